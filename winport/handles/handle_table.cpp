#include "winport/handles/handle_table.h"

#include <linux/membarrier.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <deque>
#include <mutex>
#include <new>
#include <optional>

namespace winport {

constinit std::array<std::atomic<SlotChunk*>, (1u << kSlotBits) / kChunkSlots> slotChunks{};
constinit std::atomic<bool> lookUpsNeedFence{false};

namespace {

constexpr uint32_t kGenerations = 1u << kGenerationBits;
constexpr uint32_t kSlots = 1u << kSlotBits;

struct FreeList {
    std::mutex lock;
    std::deque<uint32_t> slots;  // the longest free is taken first: a stale handle is refused for long
    uint32_t unused = 0;         // slots from here on were never taken
};

FreeList& Free() {
    static auto* list = new FreeList;
    return *list;
}

HANDLE Join(uint32_t index, uint32_t generation) {
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>((generation << kSlotBits | index) << 2));
}

std::optional<uint32_t> TakeSlot() {
    FreeList& free = Free();
    const std::lock_guard guard(free.lock);
    // Slots rest before they are used again, as long as there are fresh ones.
    if (free.slots.size() > kChunkSlots / 2 || (free.unused == kSlots && !free.slots.empty())) {
        const uint32_t index = free.slots.front();
        free.slots.pop_front();
        return index;
    }
    if (free.unused == kSlots) return std::nullopt;
    const uint32_t index = free.unused++;
    auto& chunk = slotChunks[index / kChunkSlots];
    if (chunk.load(std::memory_order_relaxed) == nullptr)
        chunk.store(new SlotChunk, std::memory_order_release);
    return index;
}

// Without memory the slot is lost, one of 65,536; a handle is closed all the same.
void GiveBackSlot(uint32_t index) {
    FreeList& free = Free();
    const std::lock_guard guard(free.lock);
    try {
        free.slots.push_back(index);
    } catch (const std::bad_alloc&) {
    }
}

// Once, before the first handle is given out.
void RegisterBarrier() {
    static const bool has = syscall(SYS_membarrier, MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED, 0, 0) == 0;
    if (!has) lookUpsNeedFence.store(true, std::memory_order_relaxed);
}

// After this, every look-up that read the slot before it was emptied is seen in its thread's hazard.
void BarrierOnAllProcessors() {
    if (lookUpsNeedFence.load(std::memory_order_relaxed))
        std::atomic_thread_fence(std::memory_order_seq_cst);
    else
        syscall(SYS_membarrier, MEMBARRIER_CMD_PRIVATE_EXPEDITED, 0, 0);
}

void WaitUntilOther(const std::atomic<KernelObject*>& hazard, const KernelObject* object) {
    while (hazard.load(std::memory_order_acquire) == object)
        sched_yield();
}

void WaitUntilUnused(const KernelObject* object) {
    if (!OtherThreads()) return;
    BarrierOnAllProcessors();
    for (ThreadRecord* record = FirstThreadRecord(); record != nullptr; record = record->next) {
        WaitUntilOther(record->hazard, object);
        for (const auto& hazard : record->waitHazards)
            WaitUntilOther(hazard, object);
    }
}

}  // namespace

HANDLE OpenHandle(KernelObject* object, uint32_t access) {
    const std::optional<uint32_t> index = TakeSlot();
    if (!index) {
        SetLastError(ERROR_TOO_MANY_OPEN_FILES);
        return nullptr;
    }
    RegisterBarrier();
    object->AddHandle();
    HandleSlot& slot = *FindSlot(*index);
    slot.lastGeneration = slot.lastGeneration % (kGenerations - 1) + 1;
    slot.access.store(access, std::memory_order_relaxed);
    slot.object.store(object, std::memory_order_relaxed);
    slot.generation.store(slot.lastGeneration, std::memory_order_release);
    return Join(*index, slot.lastGeneration);
}

}  // namespace winport

using namespace winport;

BOOL CloseHandle(HANDLE handle) {
    const HandleParts parts = SplitHandle(handle);
    HandleSlot* slot = FindSlot(parts.index);
    uint32_t generation = parts.generation;
    // Whoever takes the generation out of the slot closes the handle; a second close finds none.
    if (slot == nullptr || generation == 0 ||
        !slot->generation.compare_exchange_strong(generation, 0, std::memory_order_acq_rel)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    KernelObject* object = slot->object.exchange(nullptr, std::memory_order_acq_rel);
    WaitUntilUnused(object);
    GiveBackSlot(parts.index);
    object->ReleaseHandle();
    return TRUE;
}
