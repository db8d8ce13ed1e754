// One slot of the system's thread-local storage for all threads' objects.
#include "entry/thread_object.h"

#include <memory>

namespace entry {
namespace {

// Written while the library is loaded and unloaded only.
DWORD slot = TLS_OUT_OF_INDEXES;

}  // namespace

bool TakeThreadSlot() {
    slot = TlsAlloc();
    return slot != TLS_OUT_OF_INDEXES;
}

void FreeThreadSlot() {
    if (slot == TLS_OUT_OF_INDEXES) return;
    TlsFree(slot);
    slot = TLS_OUT_OF_INDEXES;
}

void ClearThreadSlot() {
    if (slot != TLS_OUT_OF_INDEXES) TlsSetValue(slot, nullptr);
}

KestrelSDK* PeekThreadSDK() {
    if (slot == TLS_OUT_OF_INDEXES) {
        SetLastError(NO_ERROR);
        return nullptr;
    }
    return static_cast<KestrelSDK*>(TlsGetValue(slot));
}

KestrelSDK* GetThreadSDK() {
    if (slot == TLS_OUT_OF_INDEXES) {
        SetLastError(ERROR_DLL_INIT_FAILED);
        return nullptr;
    }
    if (KestrelSDK* const existing = PeekThreadSDK()) return existing;
    try {
        auto made = std::make_unique<KestrelSDK>();
        // The system's value must not hide what opening the channel left.
        const DWORD error = GetLastError();
        if (TlsSetValue(slot, made.get())) {
            SetLastError(error);
            return made.release();
        }
    } catch (...) {
    }
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

void ReleaseThreadSDK() {
    const std::unique_ptr<KestrelSDK> object(PeekThreadSDK());
    ClearThreadSlot();
}

}  // namespace entry
