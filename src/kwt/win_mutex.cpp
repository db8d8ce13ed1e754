// The system keeps the mutex; the levels and the owner are kept here.
#include "kwt/win_mutex.h"

#include "kwt/open_security.h"
#include "kwt/step.h"
#include "kwt/unique_handle.h"

namespace kwt {

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

// The object keeps a bare handle, which other threads read without a lock; one that is done with is owned.
using RetiredHandle = UniqueHandle<CloseHandle>;

}  // namespace

WinMutex::WinMutex() : WinMutex(nullptr, false) {}

WinMutex::WinMutex(const WCHAR* name, bool global) {
    ClearState();
    Create(name, global);
}

WinMutex::~WinMutex() {
    Close();
}

bool WinMutex::IsValid() {
    return handle_.load(std::memory_order_acquire) != nullptr;
}

bool WinMutex::Create(const WCHAR* name, bool global) {
    const CriticalSection::Guard guard(guard_);
    if (const RetiredHandle previous(handle_); previous.IsHeld()) ClearState();
    OpenSecurity security;
    const ObjectPath path(name, global);
    if (security.Get() == nullptr || !path.Fits()) return false;
    handle_ = CreateMutexW(security.Get(), FALSE, path.Get());
    return handle_ != nullptr;
}

void WinMutex::Close() {
    if (!IsValid()) return;
    Unlock();
    const CriticalSection::Guard guard(guard_);
    const RetiredHandle last(handle_);
    ClearState();
}

bool WinMutex::IsOwnedBy(uint32_t threadId) const {
    return ownerThreadId_.load(kRelaxed) == threadId && lockCount_.load(kRelaxed) > 0;
}

WaitResult WinMutex::Lock(uint32_t timeoutMs) {
    const HANDLE handle = handle_.load(std::memory_order_acquire);
    if (handle == nullptr) return WaitResult::NoObject;
    const uint32_t self = GetCurrentThreadId();
    if (IsOwnedBy(self)) {
        lockCount_.store(lockCount_.load(kRelaxed) + 1, kRelaxed);
        return WaitResult::Signaled;
    }
    const DWORD result = WaitForSingleObject(handle, timeoutMs);
    Step("mutex: waited");
    if (result == WAIT_ABANDONED) {
        // The system has made this thread the owner; the wrapper records none, so nobody could give the mutex
        // back later.
        ReleaseMutex(handle);
        return WaitResult::Abandoned;
    }
    if (result != WAIT_OBJECT_0) return result == WAIT_TIMEOUT ? WaitResult::TimedOut : WaitResult::Failed;
    ownerProcessId_.store(GetCurrentProcessId(), kRelaxed);
    ownerThreadId_.store(self, kRelaxed);
    lockCount_.store(1, kRelaxed);
    return WaitResult::Signaled;
}

uint32_t WinMutex::Unlock() {
    const uint32_t levels = lockCount_.load(kRelaxed);
    if (!IsOwnedBy(GetCurrentThreadId())) return levels;
    lockCount_.store(levels - 1, kRelaxed);
    if (levels > 1) return levels - 1;
    ownerProcessId_.store(0, kRelaxed);
    ownerThreadId_.store(0, kRelaxed);
    Step("mutex: no owner recorded");
    ReleaseMutex(handle_.load(kRelaxed));
    Step("mutex: released");
    return 0;
}

bool WinMutex::IsLocked() {
    return lockCount_.load(kRelaxed) > 0;
}

bool WinMutex::IsLockedByCurrentThread() {
    return IsOwnedBy(GetCurrentThreadId());
}

uint32_t WinMutex::GetOwnerProcessId() {
    return ownerProcessId_.load(kRelaxed);
}

uint32_t WinMutex::GetOwnerThreadId() {
    return ownerThreadId_.load(kRelaxed);
}

void WinMutex::ClearState() {
    handle_ = nullptr;
    lockCount_ = 0;
    ownerProcessId_ = 0;
    ownerThreadId_ = 0;
}

}  // namespace kwt
