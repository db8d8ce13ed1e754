// The system's results, told in the words of the transport.
#include "kwt/win_event.h"

#include <algorithm>
#include <array>

#include "kwt/open_security.h"

namespace kwt {

WinEvent::WinEvent() {
    WinEvent::Init();
    WinEvent::Create(nullptr, false);
}

WinEvent::WinEvent(const WCHAR* name, bool global) {
    WinEvent::Init();
    WinEvent::Create(name, global);
}

WinEvent::WinEvent(bool manualReset) : manualReset_(manualReset) {}

bool WinEvent::IsValid() const {
    return handle_.IsHeld();
}

bool WinEvent::Create(const WCHAR* name, bool global) {
    handle_.Reset();
    OpenSecurity security;
    const ObjectPath path(name, global);
    if (security.Get() == nullptr || !path.Fits()) return false;
    handle_.Reset(CreateEventW(security.Get(), manualReset_, FALSE, path.Get()));
    return handle_.IsHeld();
}

BOOL WinEvent::Set() {
    return handle_.IsHeld() ? SetEvent(handle_.Get()) : FALSE;
}

BOOL WinEvent::Reset() {
    return handle_.IsHeld() ? ResetEvent(handle_.Get()) : FALSE;
}

bool WinEvent::IsSignaled() {
    // Looking at an auto-reset event would take its signal.
    return handle_.IsHeld() && manualReset_ && WaitForSingleObject(handle_.Get(), 0) == WAIT_OBJECT_0;
}

WaitResult WinEvent::ResetAndWait(uint32_t timeoutMs) {
    return WaitEx(timeoutMs, true);
}

WaitResult WinEvent::Wait(uint32_t timeoutMs) {
    return WaitEx(timeoutMs, false);
}

HANDLE WinEvent::GetHandle() const {
    return handle_.Get();
}

bool WinEvent::IsManualReset() const {
    return manualReset_ != FALSE;
}

void WinEvent::Init() {
    handle_.Reset();
    manualReset_ = TRUE;
}

WaitResult WinEvent::WaitEx(uint32_t timeoutMs, bool resetFirst) {
    if (!handle_.IsHeld()) return WaitResult::NoObject;
    if (manualReset_ && resetFirst) Reset();
    switch (WaitForSingleObject(handle_.Get(), timeoutMs)) {
        case WAIT_OBJECT_0:
            return WaitResult::Signaled;
        case WAIT_TIMEOUT:
            return WaitResult::TimedOut;
        case WAIT_ABANDONED:
            return WaitResult::Abandoned;
        default:
            return WaitResult::Failed;
    }
}

WinEventAuto::WinEventAuto() : WinEvent(false) {
    WinEvent::Create(nullptr, false);
}

WinEventAuto::WinEventAuto(const WCHAR* name, bool global) : WinEvent(false) {
    WinEvent::Create(name, global);
}

WaitResult WaitForEvents(uint32_t count, WinEvent* const* events, bool waitAll, uint32_t& index,
                         uint32_t timeoutMs, bool resetFirst) {
    index = 0;
    std::array<HANDLE, MAXIMUM_WAIT_OBJECTS> handles;  // what is not used is not touched
    handles[0] = nullptr;
    if (count > handles.size()) return WaitResult::Failed;
    for (uint32_t i = 0; i < count; ++i) {
        handles[i] = events[i]->GetHandle();
        if (handles[i] == nullptr) {
            index = i;
            return WaitResult::NoObject;
        }
        if (resetFirst && events[i]->IsManualReset()) events[i]->Reset();
    }
    const DWORD result = WaitForMultipleObjects(count, handles.data(), waitAll, timeoutMs);
    if (result < WAIT_OBJECT_0 + count) {
        index = result - WAIT_OBJECT_0;
        return WaitResult::Signaled;
    }
    if (result >= WAIT_ABANDONED_0 && result < WAIT_ABANDONED_0 + count) {
        index = result - WAIT_ABANDONED_0;
        return WaitResult::Abandoned;
    }
    return result == WAIT_TIMEOUT ? WaitResult::TimedOut : WaitResult::Failed;
}

}  // namespace kwt
