// The locks of the platform layer, held for a scope.
#pragma once

#include "kwt/shared_memory.h"
#include "kwt/win_mutex.h"

namespace kwt {

/// A mutex, unless the wait for it ended in another way.
class MutexLock final {
  public:
    MutexLock(WinMutex& mutex, uint32_t timeoutMs) : mutex_(mutex), result_(mutex.Lock(timeoutMs)) {}
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;
    ~MutexLock() {
        if (result_ == WaitResult::Signaled) mutex_.Unlock();
    }

    [[nodiscard]] WaitResult Result() const { return result_; }

  private:
    WinMutex& mutex_;
    const WaitResult result_;
};

/// What the end of a section's lock tells the other side.
enum class AtUnlock : bool { Silent = false, Notify = true };

/// A section's block. Where the lock was not to be had, there is none, and the last-error value says why;
/// the end of the scope clears that value.
class SectionLock final {
  public:
    SectionLock(SharedMemory& section, SectionAccess access, AtUnlock atUnlock, uint32_t timeoutMs)
        : section_(section), block_(section.Lock(access, timeoutMs)), atUnlock_(atUnlock) {}
    SectionLock(const SectionLock&) = delete;
    SectionLock& operator=(const SectionLock&) = delete;
    ~SectionLock() {
        if (block_ != nullptr) section_.Unlock(atUnlock_ == AtUnlock::Notify);
    }

    [[nodiscard]] uint8_t* Block() const { return block_; }

  private:
    SharedMemory& section_;
    uint8_t* const block_;
    const AtUnlock atUnlock_;
};

}  // namespace kwt
