// The text is made of numbers of fixed width, so that every field has its place in it.
#include "settings/clock_text.h"

#include <ctime>

#include <cstdlib>
#include <string_view>

namespace settings {
namespace {

constexpr int kTmYears = 1900;
constexpr size_t kOffsetPosition = 24;
constexpr double kSecondsPerMinute = 60.0;

void AppendHex(std::string& text, uint64_t value, int digits) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += kDigits[(value >> shift) & 15];
}

}  // namespace

bool ReadHostClock(HostClock& clock) {
    _tzset();
    const __time64_t now = _time64(nullptr);
    tm local = {};
    if (_localtime64_s(&local, &now) != 0) return false;
    // Both conversions may put their argument in order.
    tm asUtc = local;
    tm asLocal = local;
    const auto offset = static_cast<double>(_mkgmtime64(&asUtc) - _mktime64(&asLocal));
    clock.utcOffsetMinutes = static_cast<int16_t>(offset / kSecondsPerMinute);
    clock.observesDaylightSaving = _daylight != 0;
    clock.local = {.year = local.tm_year + kTmYears,
                   .month = local.tm_mon + 1,
                   .day = local.tm_mday,
                   .dayOfWeek = local.tm_wday,
                   .hour = local.tm_hour,
                   .minute = local.tm_min,
                   .second = local.tm_sec};
    return true;
}

bool FormatClockText(uint64_t hostId, const HostClock& clock, std::string& text) {
    uint32_t seconds = 0;
    if (!SecondsSince2000(clock.local, clock.observesDaylightSaving, seconds)) return false;
    text.clear();
    AppendHex(text, hostId, 16);
    AppendHex(text, seconds, 8);
    AppendHex(text, static_cast<uint64_t>(std::abs(clock.utcOffsetMinutes)), 4);
    if (clock.utcOffsetMinutes < 0) text[kOffsetPosition] = '1';
    return true;
}

}  // namespace settings
