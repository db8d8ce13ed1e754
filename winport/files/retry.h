// Waiting for a lock that another process holds: a holder that is stopped must not stop everybody for ever.
#pragma once

#include <time.h>

#include <algorithm>
#include <cerrno>

namespace winport {

// Tries for about five seconds, as long as it fails because the lock is held. False with errno EBUSY after
// that, or with the errno of another failure.
template <typename Attempt>
bool RetryWhileHeld(Attempt attempt) {
    constexpr long kFirstPauseNs = 20'000;
    constexpr long kLongestPauseNs = 2'000'000;
    constexpr long kLimitNs = 5'000'000'000;
    long pause = kFirstPauseNs;
    for (long waited = 0; !attempt(); waited += pause, pause = std::min(pause * 2, kLongestPauseNs)) {
        if (errno != EAGAIN && errno != EACCES) return false;
        if (waited >= kLimitNs) {
            errno = EBUSY;
            return false;
        }
        const timespec rest = {0, pause};
        ::nanosleep(&rest, nullptr);
    }
    return true;
}

}  // namespace winport
