// The calendar's part by the library, the milliseconds by hand: it knows whole seconds only.
#include "shared/time_text.h"

#include <fmt/chrono.h>

#include <ctime>

#include <windows.h>

namespace tools {
namespace {

int MillisecondOfSecond(std::chrono::system_clock::time_point time) {
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    return static_cast<int>(sinceEpoch.count() % 1000);
}

constexpr int64_t kYear2000 = 946'684'800;  // seconds after 1970

}  // namespace

std::string LocalTimeOfDay(std::chrono::system_clock::time_point time) {
    return fmt::format("{:%H:%M:%S}.{:03}", fmt::localtime(std::chrono::system_clock::to_time_t(time)),
                       MillisecondOfSecond(time));
}

std::string UtcTime(std::chrono::system_clock::time_point time) {
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z", fmt::gmtime(std::chrono::system_clock::to_time_t(time)),
                       MillisecondOfSecond(time));
}

int64_t LocalSecondsSince2000() {
    const __time64_t now = _time64(nullptr);
    tm local = {};
    if (_localtime64_s(&local, &now) != 0) return now - kYear2000;
    return _mkgmtime64(&local) - kYear2000;
}

}  // namespace tools
