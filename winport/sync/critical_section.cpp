// Critical sections: one word, taken without the kernel unless somebody waits.
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <windows.h>

#include <atomic>

#include "winport/threads/thread_record.h"

namespace {

constexpr uint32_t kFree = 0;
constexpr uint32_t kHeld = 1;
constexpr uint32_t kHeldWithSleepers = 2;
constexpr int kLooks = 100;

std::atomic_ref<uint32_t> StateOf(LPCRITICAL_SECTION section) {
    return std::atomic_ref(section->state);
}

// Read by threads that do not own the section, to compare with themselves only.
std::atomic_ref<uint32_t> OwnerOf(LPCRITICAL_SECTION section) {
    return std::atomic_ref(section->ownerId);
}

bool TakeFree(LPCRITICAL_SECTION section) {
    uint32_t expected = kFree;
    return StateOf(section).compare_exchange_strong(expected, kHeld, std::memory_order_acquire,
                                                    std::memory_order_relaxed);
}

void TakeContended(LPCRITICAL_SECTION section) {
    for (int look = 0; look < kLooks; ++look)
        if (TakeFree(section)) return;
    while (StateOf(section).exchange(kHeldWithSleepers, std::memory_order_acquire) != kFree)
        syscall(SYS_futex, &section->state, FUTEX_WAIT_PRIVATE, kHeldWithSleepers, nullptr, nullptr, 0);
}

}  // namespace

void InitializeCriticalSection(LPCRITICAL_SECTION section) {
    *section = {};
}

void DeleteCriticalSection(LPCRITICAL_SECTION section) {
    *section = {};
}

BOOL TryEnterCriticalSection(LPCRITICAL_SECTION section) {
    const uint32_t self = winport::CurrentThread().localId;
    if (OwnerOf(section).load(std::memory_order_relaxed) == self) {
        ++section->recursion;
        return TRUE;
    }
    if (!TakeFree(section)) return FALSE;
    OwnerOf(section).store(self, std::memory_order_relaxed);
    return TRUE;
}

void EnterCriticalSection(LPCRITICAL_SECTION section) {
    if (TryEnterCriticalSection(section)) return;
    TakeContended(section);
    OwnerOf(section).store(winport::CurrentThread().localId, std::memory_order_relaxed);
}

void LeaveCriticalSection(LPCRITICAL_SECTION section) {
    if (section->recursion != 0) {
        --section->recursion;
        return;
    }
    OwnerOf(section).store(0, std::memory_order_relaxed);
    if (StateOf(section).exchange(kFree, std::memory_order_release) == kHeldWithSleepers)
        syscall(SYS_futex, &section->state, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}
