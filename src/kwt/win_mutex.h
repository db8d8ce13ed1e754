// A mutex of the system with per-thread recursion and a record of its owner.
#pragma once

#include <atomic>
#include <cstdint>

#include "kwt/critical_section.h"
#include "kwt/wait_result.h"
#include "kwt/wide_text.h"

namespace kwt {

/// May be used from several threads of the process. Virtual, in this order, and complete: the interface that
/// all modules of the package agree on, whatever this one calls.
class WinMutex final {
  public:
    /// An unnamed mutex, local to the process.
    WinMutex();
    WinMutex(const WCHAR* name, bool global);
    WinMutex(const WinMutex&) = delete;
    WinMutex& operator=(const WinMutex&) = delete;
    virtual ~WinMutex();

    [[nodiscard]] virtual bool IsValid();
    virtual bool Create(const WCHAR* name, bool global);
    virtual void Close();
    /// Takes the mutex within `timeoutMs` milliseconds; a thread that has it already goes one level deeper
    /// without asking the system. `Abandoned` when the previous owner died with it: the mutex is then given
    /// back at once, nothing is held, and the next call works.
    virtual WaitResult Lock(uint32_t timeoutMs);
    /// Goes up one level and gives the mutex back at the last; nothing happens on a thread that does not have
    /// it. Returns the levels that are left.
    virtual uint32_t Unlock();
    [[nodiscard]] virtual bool IsLocked();
    [[nodiscard]] virtual bool IsLockedByCurrentThread();
    [[nodiscard]] virtual uint32_t GetOwnerProcessId();
    [[nodiscard]] virtual uint32_t GetOwnerThreadId();
    virtual void ClearState();

  private:
    [[nodiscard]] bool IsOwnedBy(uint32_t threadId) const;

    // The record of the owner is written by the owner alone, between the end of its wait and its release, and
    // a thread finds its own id there only while it is the owner: single reads and writes suffice, where a
    // critical section around each would cost more than the rest of an exchange.
    std::atomic<HANDLE> handle_ = nullptr;
    std::atomic<uint32_t> lockCount_ = 0;
    std::atomic<uint32_t> ownerProcessId_ = 0;
    std::atomic<uint32_t> ownerThreadId_ = 0;
    CriticalSection guard_;  // of the handle's changes; never held while waiting for the system mutex
};

}  // namespace kwt
