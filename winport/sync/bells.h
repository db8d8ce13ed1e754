// Sleeping for several events at once. To sleep on all their words is a dearer call of the kernel; so a
// thread sleeps on one word of its own, its bell, and leaves the bell's number in the words of the events.
// Whoever sets one of them rings.
//
// A bell is odd while its thread sleeps there or is about to. The thread makes it odd and then looks at the
// events; a setter changes an event and then looks at the bell. All four are sequentially consistent: either
// the thread finds the event set, or the setter finds the bell odd and makes it even, which the kernel
// compares before it lets the thread sleep. So no wake-up is lost, and a bell where nobody sleeps costs no
// call.
//
// Only auto-reset events have room for the number. An event has place for one bell; others sleep on its word
// as if there were none, and the setter sees to both.
#pragma once

#include <cstdint>

#include "winport/handles/object_page.h"
#include "winport/sync/futex.h"
#include "winport/threads/thread_record.h"

namespace winport {

class BellSleep final {
  public:
    // Ready to sleep at the thread's bell, unless it has none.
    explicit BellSleep(ThreadRecord& thread);
    BellSleep(const BellSleep&) = delete;
    BellSleep& operator=(const BellSleep&) = delete;
    ~BellSleep();

    [[nodiscard]] explicit operator bool() const { return number_ != 0; }

    enum class Place { Taken, EventIsSet, None };
    // Leaves the number in the event. The place of another thread is taken over where that does not sleep, or
    // else only with `wakeOther`: that thread is woken and finds a way of its own.
    [[nodiscard]] Place LeaveNumber(ObjectPage& page, bool wakeOther) const;
    void Sleep(Moment until) const;

  private:
    uint32_t number_ = 0;
    uint32_t tag_ = 0;
    std::atomic<uint32_t>* bell_ = nullptr;
    uint32_t armed_ = 0;
};

// Of an event that was set: wakes the thread that left its number in the word.
void RingBell(ObjectPage& page, uint32_t wordBefore);

}  // namespace winport
