// What is left of a caller's time-out while an operation runs several waits.
#pragma once

#include <windows.h>

#include <cstdint>

namespace session {

class RemainingTime final {
  public:
    /// Starts now; `timeoutMs` in milliseconds.
    explicit RemainingTime(uint32_t timeoutMs) : start_(GetTickCount()), timeoutMs_(timeoutMs) {}

    /// Milliseconds left, 0 when the time is up.
    [[nodiscard]] uint32_t Milliseconds() const { return At(start_, timeoutMs_, GetTickCount()); }

    /// False, with last-error value 1460, when the time is up; else `left` receives what is left of it.
    [[nodiscard]] bool IsLeft(uint32_t& left) const {
        left = Milliseconds();
        if (left == 0) SetLastError(ERROR_TIMEOUT);
        return left != 0;
    }

    /// Milliseconds left at a given tick count. A count below the start has wrapped, after 49.7 days: no time
    /// is left then, whatever the time-out.
    [[nodiscard]] static constexpr uint32_t At(uint32_t start, uint32_t timeoutMs, uint32_t now) {
        if (now < start || now - start >= timeoutMs) return 0;
        return timeoutMs - (now - start);
    }

  private:
    const uint32_t start_;
    const uint32_t timeoutMs_;
};

}  // namespace session
