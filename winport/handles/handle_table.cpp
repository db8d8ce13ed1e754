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

namespace {

// Handle value: generation (14 bits), slot (16 bits), two zero bits as on Windows.
constexpr uint32_t kSlotBits = 16;
constexpr uint32_t kGenerations = 1u << 14;
constexpr uint32_t kChunkSlots = 256;
constexpr uint32_t kChunks = (1u << kSlotBits) / kChunkSlots;

struct Slot {
    std::atomic<uint32_t> generation{0};  // of the open handle, 0 when the slot is free
    std::atomic<KernelObject*> object{nullptr};
    std::atomic<uint32_t> access{0};
    uint32_t lastGeneration = 0;
};

using Chunk = std::array<Slot, kChunkSlots>;

// Chunks are made when needed and never freed: a look-up may come at any time.
std::array<std::atomic<Chunk*>, kChunks> chunks;

struct FreeList {
    std::mutex lock;
    std::deque<uint32_t> slots;  // the longest free is taken first: a stale handle is refused for long
    uint32_t unused = 0;         // slots from here on were never taken
};

FreeList& Free() {
    static auto* list = new FreeList;
    return *list;
}

Slot* FindSlot(uint32_t index) {
    Chunk* chunk = chunks[index / kChunkSlots].load(std::memory_order_acquire);
    return chunk != nullptr ? &(*chunk)[index % kChunkSlots] : nullptr;
}

struct Parts {
    uint32_t index;
    uint32_t generation;
};

std::optional<Parts> Split(HANDLE handle) {
    const auto value = reinterpret_cast<uintptr_t>(handle);
    if (value == 0 || value > 0xFFFFFFFFu || (value & 3) != 0) return std::nullopt;
    const auto bits = static_cast<uint32_t>(value >> 2);
    return Parts{bits & ((1u << kSlotBits) - 1), bits >> kSlotBits};
}

HANDLE Join(uint32_t index, uint32_t generation) {
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>((generation << kSlotBits | index) << 2));
}

std::optional<uint32_t> TakeSlot() {
    FreeList& free = Free();
    const std::lock_guard guard(free.lock);
    // Slots rest before they are used again, as long as there are fresh ones.
    if (free.slots.size() > kChunkSlots / 2 ||
        (free.unused == kChunks * kChunkSlots && !free.slots.empty())) {
        const uint32_t index = free.slots.front();
        free.slots.pop_front();
        return index;
    }
    if (free.unused == kChunks * kChunkSlots) return std::nullopt;
    const uint32_t index = free.unused++;
    auto& chunk = chunks[index / kChunkSlots];
    if (chunk.load(std::memory_order_relaxed) == nullptr) chunk.store(new Chunk, std::memory_order_release);
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

bool RegisterBarrier() {
    return syscall(SYS_membarrier, MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED, 0, 0) == 0;
}

// False on a kernel without the call: then every look-up pays for a fence of its own.
bool HasBarrier() {
    static const bool has = RegisterBarrier();
    return has;
}

// After this, every look-up that read the slot before it was emptied is seen in its thread's hazard.
void BarrierOnAllProcessors() {
    if (HasBarrier())
        syscall(SYS_membarrier, MEMBARRIER_CMD_PRIVATE_EXPEDITED, 0, 0);
    else
        std::atomic_thread_fence(std::memory_order_seq_cst);
}

void WaitUntilUnused(const KernelObject* object) {
    if (!SeveralThreads()) return;
    BarrierOnAllProcessors();
    for (ThreadRecord* record = FirstThreadRecord(); record != nullptr; record = record->next)
        while (record->hazard.load(std::memory_order_acquire) == object)
            sched_yield();
}

}  // namespace

HANDLE OpenHandle(KernelObject* object, uint32_t access) {
    const std::optional<uint32_t> index = TakeSlot();
    if (!index) {
        SetLastError(ERROR_TOO_MANY_OPEN_FILES);
        return nullptr;
    }
    HasBarrier();
    object->AddHandle();
    Slot& slot = *FindSlot(*index);
    slot.lastGeneration = slot.lastGeneration % (kGenerations - 1) + 1;
    slot.access.store(access, std::memory_order_relaxed);
    slot.object.store(object, std::memory_order_relaxed);
    slot.generation.store(slot.lastGeneration, std::memory_order_release);
    return Join(*index, slot.lastGeneration);
}

UsedObject::UsedObject(HANDLE handle) : thread_(CurrentThread()) {
    const auto parts = Split(handle);
    Slot* slot = parts ? FindSlot(parts->index) : nullptr;
    if (slot != nullptr) {
        KernelObject* object = slot->object.load(std::memory_order_acquire);
        thread_.hazard.store(object, std::memory_order_release);
        if (HasBarrier())
            std::atomic_signal_fence(std::memory_order_seq_cst);
        else
            std::atomic_thread_fence(std::memory_order_seq_cst);
        if (slot->generation.load(std::memory_order_acquire) == parts->generation &&
            slot->object.load(std::memory_order_relaxed) == object)
            object_ = object;
        access_ = slot->access.load(std::memory_order_relaxed);
    }
    if (object_ == nullptr) SetLastError(ERROR_INVALID_HANDLE);
}

UsedObject::UsedObject(HANDLE handle, ObjectKind kind) : UsedObject(handle) {
    if (object_ != nullptr && object_->Kind() != kind) {
        object_ = nullptr;
        SetLastError(ERROR_INVALID_HANDLE);
    }
}

}  // namespace winport

using namespace winport;

BOOL CloseHandle(HANDLE handle) {
    const auto parts = Split(handle);
    Slot* slot = parts ? FindSlot(parts->index) : nullptr;
    uint32_t generation = parts ? parts->generation : 0;
    // Whoever takes the generation out of the slot closes the handle; a second close finds none.
    if (slot == nullptr || generation == 0 ||
        !slot->generation.compare_exchange_strong(generation, 0, std::memory_order_acq_rel)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    KernelObject* object = slot->object.exchange(nullptr, std::memory_order_acq_rel);
    WaitUntilUnused(object);
    GiveBackSlot(parts->index);
    object->ReleaseHandle();
    return TRUE;
}
