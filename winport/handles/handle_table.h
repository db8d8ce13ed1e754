// The process's handles. A handle value holds the slot and the slot's generation, so that a closed handle is
// refused even when its slot is in use again.
//
// Looking an object up costs two loads and a store and never waits: the thread names the object in its record
// (its hazard), and whoever closes a handle makes sure, with one barrier on all processors, that no thread
// names the object any more before its reference is dropped.
#pragma once

#include <windows.h>

#include <cstdint>

#include "winport/handles/kernel_object.h"
#include "winport/module/thread_record.h"

namespace winport {

// A new handle to the object, which gains a reference; null with ERROR_TOO_MANY_OPEN_FILES when the table is
// full. `access` is kept for the calls that ask for it.
HANDLE OpenHandle(KernelObject* object, uint32_t access = 0);

// The object of a handle for the length of one short operation. No wait, no second use and no call of foreign
// code while one is alive; what takes longer keeps a reference of its own.
class UsedObject final {
  public:
    // Empty with ERROR_INVALID_HANDLE when the handle is not open.
    explicit UsedObject(HANDLE handle);
    UsedObject(HANDLE handle, ObjectKind kind);
    UsedObject(const UsedObject&) = delete;
    UsedObject& operator=(const UsedObject&) = delete;
    ~UsedObject() { thread_.hazard.store(nullptr, std::memory_order_release); }

    [[nodiscard]] explicit operator bool() const { return object_ != nullptr; }
    [[nodiscard]] KernelObject* Get() const { return object_; }
    [[nodiscard]] ThreadRecord& Thread() const { return thread_; }
    [[nodiscard]] uint32_t Access() const { return access_; }

  private:
    ThreadRecord& thread_;
    KernelObject* object_ = nullptr;
    uint32_t access_ = 0;
};

}  // namespace winport
