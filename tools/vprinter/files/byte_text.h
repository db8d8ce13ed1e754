// Values are bytes of the printer's 8-bit code, JSON texts are UTF-8: each byte travels as the character of
// that number.
#pragma once

#include <string>
#include <string_view>

namespace vprinter {

[[nodiscard]] std::string ToUtf8(std::string_view bytes);

/// Characters beyond U+00FF, which nothing of ours writes, become question marks.
[[nodiscard]] std::string FromUtf8(std::string_view text);

}  // namespace vprinter
