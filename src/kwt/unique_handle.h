// One handle of the system, owned: whatever kind it is, one close at the end of its life.
#pragma once

#include <windows.h>

#include <cstdint>
#include <utility>

#include "kwt/last_error_keeper.h"

namespace kwt {

/// What the closing call `close` takes; never defined.
template <typename Result, typename Handle>
Handle HandleOf(Result(WINAPI* close)(Handle));

/// Holds a handle, or none, and gives it back with `close`; the last-error value is left as it was. `none` is
/// the number that the opening call gives for no handle: 0 mostly, -1 for files.
template <auto close, std::intptr_t none = 0, typename Handle = decltype(HandleOf(close))>
class UniqueHandle final {
  public:
    UniqueHandle() = default;
    explicit UniqueHandle(Handle handle) : handle_(handle) {}
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;
    ~UniqueHandle() { Reset(); }

    [[nodiscard]] bool IsHeld() const { return handle_ != None(); }
    [[nodiscard]] Handle Get() const { return handle_; }

    /// Gives back what is held and holds `handle`.
    void Reset(Handle handle = None()) {
        const Handle previous = std::exchange(handle_, handle);
        if (previous == None()) return;
        const LastErrorKeeper keeper;
        close(previous);
    }

    /// Where a call that opens writes its handle; nothing is held before.
    [[nodiscard]] Handle* Receive() {
        Reset();
        return &handle_;
    }

  private:
    [[nodiscard]] static Handle None() { return reinterpret_cast<Handle>(none); }

    Handle handle_ = None();
};

}  // namespace kwt
