#include "kwt/win_mutex.h"

#include "kwt/open_security.h"
#include "kwt/step.h"

namespace kwt {

namespace {

class Guard final {
  public:
    explicit Guard(CRITICAL_SECTION& section) : section_(section) { EnterCriticalSection(&section_); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
    ~Guard() { LeaveCriticalSection(&section_); }

  private:
    CRITICAL_SECTION& section_;
};

}  // namespace

WinMutex::WinMutex() : WinMutex(nullptr, false) {}

WinMutex::WinMutex(const WCHAR* name, bool global) {
    InitializeCriticalSection(&guard_);
    ClearState();
    Create(name, global);
}

WinMutex::~WinMutex() {
    Close();
    DeleteCriticalSection(&guard_);
}

bool WinMutex::IsValid() {
    const Guard guard(guard_);
    return handle_ != nullptr;
}

bool WinMutex::Create(const WCHAR* name, bool global) {
    const Guard guard(guard_);
    if (handle_ != nullptr) {
        CloseHandle(handle_);
        ClearState();
    }
    OpenSecurity security;
    const ObjectPath path(name, global);
    if (security.Get() == nullptr || !path.Fits()) return false;
    handle_ = CreateMutexW(security.Get(), FALSE, path.Get());
    return handle_ != nullptr;
}

void WinMutex::Close() {
    if (!IsValid()) return;
    Unlock();
    const Guard guard(guard_);
    CloseHandle(handle_);
    ClearState();
}

WaitResult WinMutex::Lock(uint32_t timeoutMs) {
    if (handle_ == nullptr) return WaitResult::NoObject;
    const uint32_t self = GetCurrentThreadId();
    {
        const Guard guard(guard_);
        if (lockCount_ > 0 && ownerThreadId_ == self) {
            ++lockCount_;
            return WaitResult::Signaled;
        }
    }
    const DWORD result = WaitForSingleObject(handle_, timeoutMs);
    Step("mutex: waited");
    if (result == WAIT_ABANDONED) {
        // The system has made this thread the owner; the wrapper records none, so nobody could give the mutex
        // back later.
        ReleaseMutex(handle_);
        return WaitResult::Abandoned;
    }
    if (result != WAIT_OBJECT_0) return result == WAIT_TIMEOUT ? WaitResult::TimedOut : WaitResult::Failed;
    const Guard guard(guard_);
    lockCount_ = 1;
    ownerProcessId_ = GetCurrentProcessId();
    ownerThreadId_ = self;
    return WaitResult::Signaled;
}

uint32_t WinMutex::Unlock() {
    const Guard guard(guard_);
    if (lockCount_ > 0 && ownerThreadId_ == GetCurrentThreadId() && --lockCount_ == 0) {
        ownerProcessId_ = 0;
        ownerThreadId_ = 0;
        Step("mutex: no owner recorded");
        ReleaseMutex(handle_);
        Step("mutex: released");
    }
    return lockCount_;
}

bool WinMutex::IsLocked() {
    const Guard guard(guard_);
    return lockCount_ > 0;
}

bool WinMutex::IsLockedByCurrentThread() {
    const Guard guard(guard_);
    return lockCount_ > 0 && ownerThreadId_ == GetCurrentThreadId();
}

uint32_t WinMutex::GetOwnerProcessId() {
    const Guard guard(guard_);
    return ownerProcessId_;
}

uint32_t WinMutex::GetOwnerThreadId() {
    const Guard guard(guard_);
    return ownerThreadId_;
}

void WinMutex::ClearState() {
    handle_ = nullptr;
    lockCount_ = 0;
    ownerProcessId_ = 0;
    ownerThreadId_ = 0;
}

}  // namespace kwt
