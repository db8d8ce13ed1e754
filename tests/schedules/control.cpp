#include "control.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>

namespace schedules {

namespace {

constexpr time_t kHungSeconds = 20;

}  // namespace

bool IsAvailable(const Control& control, uint32_t object, const Waiting& waiting) {
    const Object& it = control.objects[object];
    return it.isMutex ? it.owner == kNobody : it.isSet || (waiting.pulsed & 1u << object) != 0;
}

bool AnyIsAvailable(const Control& control, const Waiting& waiting) {
    for (uint32_t object = 0; object < kObjects; ++object)
        if ((waiting.objects & 1u << object) != 0 && IsAvailable(control, object, waiting)) return true;
    return false;
}

bool CanRun(const Control& control, uint32_t actor) {
    if (control.fates[actor] != Fate::Running) return false;
    const Waiting& waiting = control.waitings[actor];
    return !waiting.waits || waiting.deadline <= control.now || AnyIsAvailable(control, waiting);
}

uint32_t NextInTurn(Control& control, uint32_t from) {
    for (;;) {
        for (uint32_t i = 1; i <= kActors; ++i)
            if (const uint32_t actor = (from + i) % kActors; CanRun(control, actor)) return actor;
        uint64_t first = kNever;
        for (uint32_t actor = 0; actor < kActors; ++actor)
            if (control.fates[actor] == Fate::Running && control.waitings[actor].deadline < first)
                first = control.waitings[actor].deadline;
        if (first == kNever) return kNobody;
        control.now = first;
    }
}

bool IsOver(const Control& control) {
    const auto isDone = [&](uint32_t actor) { return control.fates[actor] != Fate::Running; };
    return control.isFreshPhase ? isDone(kFresh) : isDone(kClientA) && isDone(kClientB);
}

void Wake(Control& control, uint32_t actor) {
    control.go[actor].store(1, std::memory_order_release);
    ::syscall(SYS_futex, &control.go[actor], FUTEX_WAKE, 1, nullptr, nullptr, 0);
}

bool WaitForGo(Control& control, uint32_t actor) {
    const timespec longest{kHungSeconds, 0};
    while (control.go[actor].exchange(0, std::memory_order_acquire) == 0) {
        const long result = ::syscall(SYS_futex, &control.go[actor], FUTEX_WAIT, 0, &longest, nullptr, 0);
        if (result != 0 && errno == ETIMEDOUT) return false;
    }
    return true;
}

void NoteEnd(Control& control, uint32_t actor, Fate fate) {
    control.fates[actor] = fate;
    control.waitings[actor] = {};
    for (Object& object : control.objects) {
        object.openers &= ~(1u << actor);
        if (object.owner == actor) object.owner = kNobody;
    }
}

}  // namespace schedules
