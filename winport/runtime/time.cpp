// The C run-time's 64-bit time calls over those of the system, with Microsoft's limits: 1970 to 3000.
#include <time.h>

#include <cerrno>

namespace {

constexpr __time64_t kLastMoment = 32'535'215'999;  // 3000-12-31 23:59:59 UTC
constexpr int kEpochYear = 70;                      // as struct tm counts years
constexpr __time64_t kWeek = 604'800;               // seconds
constexpr int kWeeksOfYear = 53;

int daylightObserved = 0;

// Whether any week of the present year lies in daylight saving time. The system's own flag says whether the
// place ever had it, be it eighty years ago.
bool ObservesDaylightSaving() {
    __time64_t moment = ::time(nullptr);
    for (int week = 0; week < kWeeksOfYear; ++week, moment += kWeek) {
        tm local = {};
        if (::localtime_r(&moment, &local) != nullptr && local.tm_isdst > 0) return true;
    }
    return false;
}

bool IsKnown(__time64_t moment) {
    return moment >= 0 && moment <= kLastMoment;
}

errno_t Refuse() {
    errno = EINVAL;
    return EINVAL;
}

// From the calendar by one of the system's conversions; -1 for a moment that the run-time does not give out.
__time64_t FromCalendar(struct tm* calendar, time_t (*convert)(struct tm*)) {
    if (calendar != nullptr && calendar->tm_year >= kEpochYear - 1) {
        const __time64_t moment = convert(calendar);
        if (IsKnown(moment)) return moment;
    }
    Refuse();
    return -1;
}

}  // namespace

__time64_t _time64(__time64_t* now) {
    const __time64_t moment = ::time(nullptr);
    if (now != nullptr) *now = moment;
    return moment;
}

errno_t _localtime64_s(struct tm* local, const __time64_t* moment) {
    if (local == nullptr) return Refuse();
    if (moment != nullptr && IsKnown(*moment) && ::localtime_r(moment, local) != nullptr) return 0;
    // Fields that no caller can take for a date.
    *local = {};
    local->tm_sec = local->tm_min = local->tm_hour = local->tm_mday = local->tm_mon = local->tm_year = -1;
    local->tm_wday = local->tm_yday = local->tm_isdst = -1;
    return Refuse();
}

__time64_t _mktime64(struct tm* local) {
    return FromCalendar(local, ::mktime);
}

__time64_t _mkgmtime64(struct tm* utc) {
    return FromCalendar(utc, ::timegm);
}

void _tzset() {
    ::tzset();
    // Written only when it changes: other threads may be reading it.
    const int observed = ObservesDaylightSaving() ? 1 : 0;
    if (daylightObserved != observed) daylightObserved = observed;
}

int* WinportDaylight() {
    return &daylightObserved;
}
