// A section is a mapping, its view, and the objects named after it.
#include "kwt/shared_memory.h"

#include "kwt/open_security.h"
#include "kwt/step.h"

namespace kwt {

namespace {

// The system may hand out a section that exists and is smaller than what was asked for.
bool ViewHolds(const void* view, uint32_t size) {
    MEMORY_BASIC_INFORMATION info;
    return VirtualQuery(view, &info, sizeof(info)) == sizeof(info) && info.RegionSize >= size;
}

}  // namespace

SharedMemory::SharedMemory() {
    SharedMemory::Init();
}

SharedMemory::~SharedMemory() {
    SharedMemory::Close();
}

bool SharedMemory::IsValid() {
    return view_.IsHeld() && mutex_.IsValid() && notifyEvent_.IsValid() && cancelEvent_.IsValid();
}

uint32_t SharedMemory::GetSize() const {
    return size_;
}

bool SharedMemory::Create(const WCHAR* name, uint32_t size, bool writable, bool global) {
    Close();
    SetLastError(NO_ERROR);
    writable_ = writable;
    size_ = size;
    const WideText base = name;
    if (!mutex_.IsValid() && !mutex_.Create((base + TEXT("Mutex")).c_str(), global)) return false;
    Step("section: mutex");
    const bool events = notifyEvent_.Create((base + TEXT("NotifyEvent")).c_str(), global) &&
                        cancelEvent_.Create((base + TEXT("CancelEvent")).c_str(), global);
    Step("section: events");
    return events && MapBlock(name, global) && IsValid();
}

bool SharedMemory::MapBlock(const WCHAR* name, bool global) {
    OpenSecurity security;
    const ObjectPath path(name, global);
    if (security.Get() == nullptr || !path.Fits()) return false;
    mapping_.Reset(CreateFileMappingW(INVALID_HANDLE_VALUE, security.Get(),
                                      writable_ ? PAGE_READWRITE : PAGE_READONLY, 0, size_, path.Get()));
    if (!mapping_.IsHeld()) return false;
    const DWORD found = GetLastError();
    Step("section: mapping");
    view_.Reset(static_cast<uint8_t*>(
        MapViewOfFile(mapping_.Get(), writable_ ? FILE_MAP_ALL_ACCESS : FILE_MAP_READ, 0, 0, 0)));
    if (!view_.IsHeld()) return false;
    if (!ViewHolds(view_.Get(), size_)) {
        Close();
        SetLastError(ERROR_BAD_CONFIGURATION);
        return false;
    }
    SetLastError(found);
    return true;
}

void SharedMemory::Close() {
    Unlock(true);
    view_.Reset();
    Step("section: unmapped");
    mapping_.Reset();
}

uint8_t* SharedMemory::Lock(SectionAccess mode, uint32_t timeoutMs) {
    SetLastError(NO_ERROR);
    if (mode == SectionAccess::Write && !writable_) {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    if (mutex_.Lock(timeoutMs) != WaitResult::Signaled && !mutex_.IsLocked()) {
        SetLastError(WAIT_TIMEOUT);
        return nullptr;
    }
    accessMode_ = mode;
    if (mode == SectionAccess::Write && notifyEvent_.IsManualReset()) notifyEvent_.Reset();
    return view_.Get();
}

bool SharedMemory::Unlock(bool notify) {
    SetLastError(NO_ERROR);
    if (!mutex_.IsLocked()) return true;
    bool ok = true;
    if (notify && accessMode_ == SectionAccess::Read) ok = notifyEvent_.Reset() != FALSE;
    Step("unlock: signal taken back");
    mutex_.Unlock();
    Step("unlock: available");
    if (notify && accessMode_ == SectionAccess::Write) ok = notifyEvent_.Set() != FALSE;
    return ok;
}

WaitResult SharedMemory::WaitForNotify(uint32_t timeoutMs) {
    SetLastError(NO_ERROR);
    if (notifyEvent_.IsSignaled()) return WaitResult::Signaled;
    WinEvent* const events[] = {&cancelEvent_, &notifyEvent_};
    uint32_t index = 0;
    WaitResult result = WaitForEvents(2, events, false, index, timeoutMs, true);
    if (result == WaitResult::Signaled && index == 0) result = WaitResult::Abandoned;
    if (result == WaitResult::Signaled || GetLastError() != NO_ERROR) return result;
    switch (result) {
        case WaitResult::TimedOut:
            SetLastError(WAIT_TIMEOUT);
            break;
        case WaitResult::Abandoned:
            SetLastError(ERROR_OPERATION_ABORTED);
            break;
        default:
            SetLastError(ERROR_GEN_FAILURE);
    }
    return result;
}

BOOL SharedMemory::Cancel() {
    return cancelEvent_.Set();
}

HANDLE SharedMemory::GetNotifyHandle() const {
    return notifyEvent_.GetHandle();
}

WinEvent& SharedMemory::GetNotifyEvent() {
    return notifyEvent_;
}

void SharedMemory::Init() {
    SetLastError(NO_ERROR);
    view_.Reset();
    mapping_.Reset();
    writable_ = true;
    accessMode_ = SectionAccess::Read;
    size_ = 0;
}

}  // namespace kwt
