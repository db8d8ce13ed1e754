#include "winport/sync/event_object.h"

#include <windows.h>

#include <climits>

#include "winport/handles/handle_table.h"
#include "winport/sync/bells.h"
#include "winport/sync/futex.h"
#include "winport/sync/poller.h"

namespace winport {

void SetSignal(KernelObject& event) {
    ObjectPage& page = event.Page();
    page.setterProcessor.store(CurrentProcessor(), std::memory_order_relaxed);
    uint32_t before;
    if (!event.IsManualReset()) {
        before = page.word.exchange(kEventSignaled, std::memory_order_seq_cst);
        if (before / kEventBell != 0) RingBell(page, before);
    } else {
        before = page.word.load(std::memory_order_relaxed);
        while (!page.word.compare_exchange_weak(
            before, ((before & ~kEventSleepers) | kEventSignaled) + kEventSetCount, std::memory_order_acq_rel,
            std::memory_order_relaxed)) {
        }
    }
    // All of them look again, also at an auto-reset event: one that is killed on its way must not take the
    // wake-up with it.
    if ((before & kEventSleepers) != 0) Wake(page.word, INT_MAX);
}

void EventObject::Reset() {
    ObjectPage& page = Page();
    // Mostly it is reset already; then the word is left to the processors that read it.
    if ((page.word.load(std::memory_order_acquire) & kEventSignaled) != 0)
        page.word.fetch_and(~kEventSignaled, std::memory_order_acq_rel);
}

bool TakeEvent(KernelObject& event, uint32_t wordAtStart) {
    ObjectPage& page = event.Page();
    uint32_t word = page.word.load(std::memory_order_acquire);
    if (event.IsManualReset())
        return (word & kEventSignaled) != 0 || word / kEventSetCount != wordAtStart / kEventSetCount;
    while ((word & kEventSignaled) != 0)
        if (page.word.compare_exchange_weak(word, word & ~kEventSignaled, std::memory_order_acq_rel,
                                            std::memory_order_acquire))
            return true;
    return false;
}

}  // namespace winport

using namespace winport;

HANDLE CreateEventW(LPSECURITY_ATTRIBUTES, BOOL manualReset, BOOL initialState, LPCWSTR name) {
    ObjectRequest request{ObjectKind::Event};
    request.name = name;
    request.manualReset = manualReset != FALSE;
    request.signaled = initialState != FALSE;
    return CreateOrOpenObject(request, EventObject::Make);
}

BOOL SetEvent(HANDLE event) {
    const UsedObject used(event, ObjectKind::Event);
    if (!used) return FALSE;
    static_cast<EventObject*>(used.Get())->Set();
    return TRUE;
}

BOOL ResetEvent(HANDLE event) {
    const UsedObject used(event, ObjectKind::Event);
    if (!used) return FALSE;
    static_cast<EventObject*>(used.Get())->Reset();
    return TRUE;
}
