// Events. The truth is one word; whoever sleeps has said so in it, so that a set asks the kernel only then.
#pragma once

#include <cstdint>

#include "winport/handles/kernel_object.h"
#include "winport/handles/object_store.h"

namespace winport {

// Sets the event of a page and wakes who sleeps on it. Pages that are no event's own, such as an ended
// program's, are manual-reset ones.
void SignalPage(ObjectPage& page);

class EventObject final : public KernelObject {
  public:
    explicit EventObject(ObjectMemory&& memory)
        : KernelObject(ObjectKind::Event, memory.Page()), memory_(std::move(memory)) {}
    static KernelObject* Make(ObjectMemory&& memory) { return new EventObject(std::move(memory)); }

    void Set() { SignalPage(Page()); }
    void Reset();

  protected:
    void LastHandleClosed() override { ForgetName(this, memory_); }

  private:
    ObjectMemory memory_;
};

// Of an event's page: whether it was set since `word` was read, or is set now; an auto-reset event's signal
// is consumed.
[[nodiscard]] bool TakeEvent(ObjectPage& page, uint32_t wordAtStart);

}  // namespace winport
