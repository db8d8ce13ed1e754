#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace cli {

// "500ms", "5s", "2m" in milliseconds; none for anything else, and for more than the library can be asked
// to wait (the largest 32-bit number means "without limit" there and is not offered).
[[nodiscard]] std::optional<std::uint32_t> ParseDuration(std::string_view text);

}  // namespace cli
