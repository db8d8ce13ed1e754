// Looking again and again for a short while before a thread goes to sleep. A wake-up of another processor
// costs tens of microseconds, an answer that is looked for comes in a tenth of one; but looking takes a
// processor from others, so it is done only where it has paid off lately.
#pragma once

#include "winport/sync/futex.h"
#include "winport/threads/thread_record.h"

namespace winport {

inline constexpr Moment kPollBudget = 50'000;  // nanoseconds
inline constexpr int kBestCredit = 8;

// One more than the number of the processor that the thread runs on; 0 when that is not known. Cheap.
[[nodiscard]] uint32_t CurrentProcessor();

class Poller final {
  public:
    // Decides whether this wait polls at all. `setterIsHere`: whoever is waited for last ran on this very
    // processor, and so cannot run while this thread looks.
    Poller(PollHistory& history, bool setterIsHere);

    // True while the caller should look once more; pauses a little and, later on, gives way to others.
    [[nodiscard]] bool Again();

    // What the wait taught: how long it went on, after polling, until what was waited for came (or the wait
    // was given up).
    void Learn(Moment slept);

    // Nothing had to be waited for.
    static void LearnFromNone(PollHistory& history) {
        if (history.credit < kBestCredit) ++history.credit;
    }

  private:
    PollHistory& history_;
    bool polls_;
    uint32_t looks_ = 0;
    Moment start_ = 0;
};

}  // namespace winport
