// Handles of one kind that are not kernel handles: registry keys, printers.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

namespace winport {

// Entries are copied out, so that a handle may be closed by one thread while another uses what it named.
// A handle's value holds the kind, the slot and how often the slot was used before: closed handles, handles
// of another kind and stray values are refused. Thread-safe.
template <typename Entry>
class SlotTable final {
  public:
    // `kind` differs from table to table and is below 128.
    explicit constexpr SlotTable(std::uint64_t kind) : kind_(kind) {}

    // A new handle's value, never 0; 0 when the table is full.
    std::uint64_t Add(const Entry& entry) {
        const std::lock_guard guard(mutex_);
        std::size_t index = 0;
        if (!free_.empty()) {
            index = free_.back();
            free_.pop_back();
        } else {
            if (slots_.size() > kIndexMask >> kIndexShift) return 0;
            index = slots_.size();
            // Closing a handle must not need memory.
            if (free_.capacity() <= index) free_.reserve(2 * index + 8);
            slots_.emplace_back();
        }
        Slot& slot = slots_[index];
        slot.entry = entry;
        return kind_ << kKindShift | static_cast<std::uint64_t>(slot.generation) << kGenerationShift |
               index << kIndexShift;
    }

    [[nodiscard]] std::optional<Entry> Find(std::uint64_t handle) {
        const std::lock_guard guard(mutex_);
        const Slot* slot = Locate(handle);
        return slot != nullptr ? slot->entry : std::nullopt;
    }

    // False when the handle is not open.
    bool Remove(std::uint64_t handle) {
        const std::lock_guard guard(mutex_);
        Slot* slot = Locate(handle);
        if (slot == nullptr) return false;
        slot->entry.reset();
        ++slot->generation;
        free_.push_back(IndexOf(handle));
        return true;
    }

  private:
    static constexpr int kKindShift = 56;
    static constexpr int kGenerationShift = 24;
    static constexpr int kIndexShift = 2;  // two bits that a caller may use, as on Windows
    static constexpr std::uint64_t kIndexMask = (1u << kGenerationShift) - 1;

    static std::size_t IndexOf(std::uint64_t handle) { return (handle & kIndexMask) >> kIndexShift; }

    struct Slot {
        std::optional<Entry> entry;
        std::uint32_t generation = 0;
    };

    Slot* Locate(std::uint64_t handle) {
        const std::size_t index = IndexOf(handle);
        if (handle >> kKindShift != kind_ || index >= slots_.size()) return nullptr;
        Slot& slot = slots_[index];
        const auto generation = static_cast<std::uint32_t>(handle >> kGenerationShift);
        return slot.entry && slot.generation == generation ? &slot : nullptr;
    }

    std::uint64_t kind_;
    std::mutex mutex_;
    std::vector<Slot> slots_;
    std::vector<std::size_t> free_;
};

}  // namespace winport
