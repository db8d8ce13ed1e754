// Points of time as people and programs read them in logs and traces.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace tools {

/// "18:30:05.250", of the local time.
[[nodiscard]] std::string LocalTimeOfDay(std::chrono::system_clock::time_point time);
/// "2026-11-24T17:30:05.250Z".
[[nodiscard]] std::string UtcTime(std::chrono::system_clock::time_point time);

/// Seconds from the beginning of 2000 to now, both in the local time.
[[nodiscard]] int64_t LocalSecondsSince2000();

}  // namespace tools
