// What a handle stands for. Objects are counted: one reference for each handle, each view and each wait that
// sleeps on the object.
#pragma once

#include <atomic>
#include <cstdint>

#include "winport/handles/object_page.h"

namespace winport {

class KernelObject {
  public:
    KernelObject(ObjectKind kind, ObjectPage* page, bool isManualReset = false)
        : kind_(kind), isManualReset_(isManualReset), page_(page) {}
    KernelObject(const KernelObject&) = delete;
    KernelObject& operator=(const KernelObject&) = delete;
    virtual ~KernelObject() = default;

    [[nodiscard]] ObjectKind Kind() const { return kind_; }
    // Of an event. Kept here too: a wait would touch another line of the page for it.
    [[nodiscard]] bool IsManualReset() const { return isManualReset_; }
    [[nodiscard]] ObjectPage& Page() const { return *page_; }
    [[nodiscard]] bool CanWait() const {
        return kind_ == ObjectKind::Event || kind_ == ObjectKind::Mutex || kind_ == ObjectKind::Process ||
               kind_ == ObjectKind::Thread;
    }

    void AddReference() { references_.fetch_add(1, std::memory_order_relaxed); }
    // Ends the object with its last reference.
    void Release() {
        if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) End();
    }

    // Handles are counted besides, since the name of an object dies with its last handle, while a view or a
    // wait may keep the memory longer.
    void AddHandle() {
        AddReference();
        handles_.fetch_add(1, std::memory_order_relaxed);
    }
    void ReleaseHandle() {
        if (handles_.fetch_sub(1, std::memory_order_acq_rel) == 1) LastHandleClosed();
        Release();
    }
    [[nodiscard]] bool HasHandles() const { return handles_.load(std::memory_order_relaxed) != 0; }

  protected:
    virtual void LastHandleClosed() {}
    virtual void End() { delete this; }

  private:
    ObjectKind kind_;
    bool isManualReset_;
    ObjectPage* page_;
    std::atomic<uint32_t> references_{0};
    std::atomic<uint32_t> handles_{0};
};

// A reference that lives as long as its scope.
class ObjectReference final {
  public:
    ObjectReference() = default;
    explicit ObjectReference(KernelObject* object) : object_(object) {
        if (object_ != nullptr) object_->AddReference();
    }
    ObjectReference(ObjectReference&& other) noexcept : object_(other.object_) { other.object_ = nullptr; }
    ObjectReference& operator=(ObjectReference&& other) noexcept {
        if (this != &other) {
            if (object_ != nullptr) object_->Release();
            object_ = other.object_;
            other.object_ = nullptr;
        }
        return *this;
    }
    ObjectReference(const ObjectReference&) = delete;
    ObjectReference& operator=(const ObjectReference&) = delete;
    ~ObjectReference() {
        if (object_ != nullptr) object_->Release();
    }

    [[nodiscard]] KernelObject* Get() const { return object_; }

  private:
    KernelObject* object_ = nullptr;
};

}  // namespace winport
