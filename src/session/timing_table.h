// Pauses that depend on how the printer is connected.
#pragma once

#include <algorithm>
#include <cstdint>

namespace session {

/// The numbers are the rows of the table that all modules of the product share; only those in use here are
/// kept.
enum class Timing : uint32_t {
    UnlockRetry = 7,
    SuppliesOrdering = 10,
};

struct TimingRow {
    Timing timing;
    uint32_t usbMs;
    uint32_t otherMs;
};
inline constexpr TimingRow kTimingTable[] = {
    {Timing::UnlockRetry, 1000, 1000},
    {Timing::SuppliesOrdering, 4000, 22000},
};

/// Milliseconds; `connectionKind` as in KestrelSDK. A connection that is not known counts as USB.
[[nodiscard]] constexpr uint32_t PauseOf(Timing timing, int32_t connectionKind) {
    const TimingRow* const row = std::ranges::find(kTimingTable, timing, &TimingRow::timing);
    return connectionKind > 0 ? row->otherMs : row->usbMs;
}

}  // namespace session
