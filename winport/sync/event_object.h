// Events. The truth is one word; whoever sleeps has said so in it, so that a set asks the kernel only then.
#pragma once

#include <cstdint>

#include "winport/handles/kernel_object.h"
#include "winport/handles/object_store.h"

namespace winport {

// Sets an event, or what is waited for like one, such as a program's end, and wakes who sleeps on it.
void SetSignal(KernelObject& event);

class EventObject final : public KernelObject {
  public:
    explicit EventObject(ObjectMemory&& memory)
        : KernelObject(ObjectKind::Event, memory.Page(), memory.Page()->manualReset != 0),
          memory_(std::move(memory)) {}
    static KernelObject* Make(ObjectMemory&& memory) { return new EventObject(std::move(memory)); }

    void Set() { SetSignal(*this); }
    void Reset();

  protected:
    void LastHandleClosed() override { ForgetName(this, memory_); }

  private:
    ObjectMemory memory_;
};

// Whether it was set since its word was read, or is set now; an auto-reset event's signal is consumed.
[[nodiscard]] bool TakeEvent(KernelObject& event, uint32_t wordAtStart);

}  // namespace winport
