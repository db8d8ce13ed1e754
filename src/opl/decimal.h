// Numbers as they open a text: digits up to whatever follows, never overflowing.
#pragma once

#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>

namespace opl {

/// The value of the leading decimal digits, 0 when there are none, the largest number when they do not fit.
[[nodiscard]] inline uint32_t LeadingDecimal(std::string_view text) {
    uint32_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc::result_out_of_range ? std::numeric_limits<uint32_t>::max() : number;
}

/// A byte count in front of a binary block. A negative count is as unsatisfiable as an absurd one.
[[nodiscard]] inline uint32_t LeadingCount(std::string_view text) {
    return text.starts_with('-') ? std::numeric_limits<uint32_t>::max() : LeadingDecimal(text);
}

}  // namespace opl
