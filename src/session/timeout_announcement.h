// The number by which the language monitor is told how long a caller waits.
#pragma once

#include <cstdint>

namespace session {

/// 95 percent of the time-out, so that the language monitor gives up a little before the caller does; beyond
/// 2,260,509,103 ms the number turns negative, which the language monitor expects.
///
/// It is the product in double precision, cut to a whole number. The integers here give the same for every
/// time-out, and on processors whose registers are wider than a double too.
[[nodiscard]] constexpr int32_t AnnouncedTimeout(uint32_t timeoutMs) {
    return static_cast<int32_t>(static_cast<uint32_t>(uint64_t{timeoutMs} * 95 / 100));
}

}  // namespace session
