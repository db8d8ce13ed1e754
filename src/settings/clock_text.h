// The text form of the printer's clock: who set it, the local time and the zone, in 28 hexadecimal digits.
#pragma once

#include <cstdint>
#include <string>

#include "settings/calendar.h"

namespace settings {

struct HostClock {
    CalendarTime local;
    int16_t utcOffsetMinutes;     // east of UTC is positive
    bool observesDaylightSaving;  // at all, not at this moment
};

/// Reads this computer's clock and zone. False for a time that it cannot express.
[[nodiscard]] bool ReadHostClock(HostClock& clock);

/// False when the clock shows a time that the printer's cannot.
[[nodiscard]] bool FormatClockText(uint64_t hostId, const HostClock& clock, std::string& text);

}  // namespace settings
