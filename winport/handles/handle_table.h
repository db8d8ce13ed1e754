// The process's handles. A handle value holds the slot and the slot's generation, so that a closed handle is
// refused even when its slot is in use again.
//
// Looking an object up costs two loads and a store and never waits: the thread names the object in its record
// (its hazard), and whoever closes a handle makes sure, with one barrier on all processors, that no thread
// names the object any more before its reference is dropped.
#pragma once

#include <windows.h>

#include <array>
#include <atomic>
#include <cstdint>

#include "winport/handles/kernel_object.h"
#include "winport/threads/thread_record.h"

namespace winport {

// Handle value: generation (14 bits), slot (16 bits), two zero bits, which a caller may use, as on Windows.
inline constexpr uint32_t kSlotBits = 16;
inline constexpr uint32_t kGenerationBits = 14;
inline constexpr uint32_t kChunkSlots = 256;

struct HandleSlot {
    std::atomic<uint32_t> generation{0};  // of the open handle, 0 when the slot is free
    std::atomic<uint32_t> access{0};
    std::atomic<KernelObject*> object{nullptr};
    uint32_t lastGeneration = 0;
};

using SlotChunk = std::array<HandleSlot, kChunkSlots>;

// Chunks are made when needed and never freed: a look-up may come at any time.
extern constinit std::array<std::atomic<SlotChunk*>, (1u << kSlotBits) / kChunkSlots> slotChunks;

// Set on a kernel without barriers on all processors: then every look-up pays for a fence of its own.
extern constinit std::atomic<bool> lookUpsNeedFence;

struct HandleParts {
    uint32_t index;
    uint32_t generation;  // 0: not a handle
};

inline HandleParts SplitHandle(HANDLE handle) {
    const auto value = reinterpret_cast<uintptr_t>(handle);
    const auto bits = static_cast<uint32_t>(value >> 2);
    const bool isHandle = (value & ~uintptr_t{0xFFFFFFFF}) == 0;
    return {bits & ((1u << kSlotBits) - 1), isHandle ? bits >> kSlotBits : 0};
}

// Null when no handle ever had that slot or one near it.
inline HandleSlot* FindSlot(uint32_t index) {
    SlotChunk* const chunk = slotChunks[index / kChunkSlots].load(std::memory_order_acquire);
    return chunk != nullptr ? &(*chunk)[index % kChunkSlots] : nullptr;
}

// A new handle to the object, which gains a reference; null with ERROR_TOO_MANY_OPEN_FILES when the table is
// full. `access` is kept for the calls that ask for it.
HANDLE OpenHandle(KernelObject* object, uint32_t access = 0);

// The object of a handle for the length of one short operation. No wait, no second use and no call of foreign
// code while one is alive; what takes longer keeps a reference of its own.
class UsedObject final {
  public:
    // Empty with ERROR_INVALID_HANDLE when the handle is not open.
    explicit UsedObject(HANDLE handle) : thread_(CurrentThread()) {
        LookUp(handle);
        if (object_ == nullptr) SetLastError(ERROR_INVALID_HANDLE);
    }
    // The same when it is another kind's.
    UsedObject(HANDLE handle, ObjectKind kind) : thread_(CurrentThread()) {
        LookUp(handle);
        if (object_ != nullptr && object_->Kind() == kind) return;
        object_ = nullptr;
        SetLastError(ERROR_INVALID_HANDLE);
    }
    UsedObject(const UsedObject&) = delete;
    UsedObject& operator=(const UsedObject&) = delete;
    ~UsedObject() { thread_.hazard.store(nullptr, std::memory_order_release); }

    [[nodiscard]] explicit operator bool() const { return object_ != nullptr; }
    [[nodiscard]] KernelObject* Get() const { return object_; }
    [[nodiscard]] ThreadRecord& Thread() const { return thread_; }
    [[nodiscard]] uint32_t Access() const { return access_; }

  private:
    void LookUp(HANDLE handle) {
        const HandleParts parts = SplitHandle(handle);
        const HandleSlot* const slot = FindSlot(parts.index);
        if (slot == nullptr || parts.generation == 0) return;
        KernelObject* const object = slot->object.load(std::memory_order_acquire);
        thread_.hazard.store(object, std::memory_order_release);
        std::atomic_signal_fence(std::memory_order_seq_cst);
        if (lookUpsNeedFence.load(std::memory_order_relaxed))
            std::atomic_thread_fence(std::memory_order_seq_cst);
        if (slot->generation.load(std::memory_order_acquire) == parts.generation &&
            slot->object.load(std::memory_order_relaxed) == object)
            object_ = object;
        access_ = slot->access.load(std::memory_order_relaxed);
    }

    ThreadRecord& thread_;
    KernelObject* object_ = nullptr;
    uint32_t access_ = 0;
};

}  // namespace winport
