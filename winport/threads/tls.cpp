// Thread-local slots: an array in each thread's record. A freed index is cleared in every thread, so that the
// next owner of the index finds null.
#include <windows.h>

#include <atomic>
#include <bit>
#include <cstdint>

#include "winport/threads/thread_record.h"

namespace {
static_assert(winport::kTlsSlots == 64, "one bit for each slot");
std::atomic<uint64_t> slotsInUse{0};

bool IsInUse(DWORD index) {
    return index < winport::kTlsSlots && (slotsInUse.load(std::memory_order_relaxed) >> index & 1) != 0;
}
}  // namespace

DWORD TlsAlloc() {
    uint64_t used = slotsInUse.load(std::memory_order_relaxed);
    while (used != ~uint64_t{0}) {
        const auto index = static_cast<DWORD>(std::countr_one(used));
        if (slotsInUse.compare_exchange_weak(used, used | uint64_t{1} << index, std::memory_order_relaxed))
            return index;
    }
    SetLastError(ERROR_NO_MORE_ITEMS);
    return TLS_OUT_OF_INDEXES;
}

BOOL TlsFree(DWORD index) {
    if (!IsInUse(index)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    for (auto* record = winport::FirstThreadRecord(); record != nullptr; record = record->next)
        record->tls[index].store(nullptr, std::memory_order_relaxed);
    slotsInUse.fetch_and(~(uint64_t{1} << index), std::memory_order_relaxed);
    return TRUE;
}

LPVOID TlsGetValue(DWORD index) {
    if (index >= winport::kTlsSlots) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    SetLastError(ERROR_SUCCESS);
    return winport::CurrentThread().tls[index].load(std::memory_order_relaxed);
}

BOOL TlsSetValue(DWORD index, LPVOID value) {
    if (!IsInUse(index)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    winport::CurrentThread().tls[index].store(value, std::memory_order_relaxed);
    return TRUE;
}
