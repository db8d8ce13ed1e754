// Waits: look; poll for a short while where that pays; sleep on all words at once; look again, also before a
// time-out is reported.
#include <windows.h>

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <span>

#include "winport/handles/handle_table.h"
#include "winport/sync/event_object.h"
#include "winport/sync/futex.h"
#include "winport/sync/mutex_object.h"
#include "winport/sync/poller.h"

namespace winport {

namespace {

constexpr Moment kMillisecond = 1'000'000;
// A mutex among several objects has no heir: its release may wake nobody, so the wait looks by itself.
constexpr Moment kMutexLook = kMillisecond;

Moment DeadlineAfter(DWORD milliseconds) {
    return milliseconds == INFINITE ? kNever : Now() + static_cast<Moment>(milliseconds) * kMillisecond;
}

// One object of a wait, and what its word was when the wait began. What is no mutex is an event: a program's
// end is one that is set once.
struct Waited {
    KernelObject* object = nullptr;
    uint32_t wordAtStart = 0;
    uint32_t token = 0;  // mutexes
};

bool Prepare(Waited& waited, ThreadRecord& thread) {
    if (!waited.object->CanWait()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return false;
    }
    if (waited.object->Kind() == ObjectKind::Mutex) {
        waited.token = static_cast<MutexObject*>(waited.object)->TokenFor(thread);
        return waited.token != 0;
    }
    waited.wordAtStart = waited.object->Page().word.load(std::memory_order_relaxed);
    return true;
}

TakeResult TryTake(const Waited& waited, ThreadRecord& thread) {
    if (waited.object->Kind() == ObjectKind::Mutex)
        return static_cast<MutexObject*>(waited.object)->TryTake(thread, waited.token, false);
    return TakeEvent(waited.object->Page(), waited.wordAtStart) ? TakeResult::Taken : TakeResult::No;
}

DWORD ResultOf(TakeResult result, DWORD index) {
    return (result == TakeResult::TakenAbandoned ? WAIT_ABANDONED_0 : WAIT_OBJECT_0) + index;
}

// Says in the object's word that somebody sleeps on it. False when the object is to be looked at again.
bool AnnounceSleep(const Waited& waited, SleepWord& sleep) {
    ObjectPage& page = waited.object->Page();
    const bool isEvent = waited.object->Kind() != ObjectKind::Mutex;
    const uint32_t flag = isEvent ? kEventSleepers : kMutexSleeper;
    uint32_t word = page.word.load(std::memory_order_relaxed);
    if (isEvent ? (word & kEventSignaled) != 0 : (word & kMutexOwner) == 0) return false;
    if (isEvent && page.manualReset != 0 && word / kEventSetCount != waited.wordAtStart / kEventSetCount)
        return false;
    if ((word & flag) == 0 &&
        !page.word.compare_exchange_strong(word, word | flag, std::memory_order_acq_rel))
        return false;
    sleep = {&page.word, word | flag};
    return true;
}

// ---- any one ----

std::optional<DWORD> TakeAny(std::span<const Waited> all, ThreadRecord& thread) {
    for (DWORD i = 0; i < all.size(); ++i)
        if (const TakeResult result = TryTake(all[i], thread); result != TakeResult::No)
            return ResultOf(result, i);
    return std::nullopt;
}

void NoticeDeadOwners(std::span<const Waited> all) {
    for (const Waited& waited : all)
        if (waited.object->Kind() == ObjectKind::Mutex)
            static_cast<MutexObject*>(waited.object)->NoticeDeadOwner();
}

bool HasMutex(std::span<const Waited> all) {
    return std::any_of(all.begin(), all.end(),
                       [](const Waited& waited) { return waited.object->Kind() == ObjectKind::Mutex; });
}

// Sleeps until one of the objects may have changed, or until the moment.
void SleepOnObjects(std::span<const Waited> all, Moment until) {
    std::array<SleepWord, MAXIMUM_WAIT_OBJECTS> words;
    for (size_t i = 0; i < all.size(); ++i)
        if (!AnnounceSleep(all[i], words[i])) return;
    SleepOn({words.data(), all.size()}, until);
}

// ---- all at once or none ----

// Takes every object, or gives back what it took of them. Others may see a signal vanish and come back within
// this call, but never a part of the objects kept.
std::optional<DWORD> TakeAll(std::span<const Waited> all, ThreadRecord& thread) {
    bool abandoned = false;
    size_t taken = 0;
    for (; taken < all.size(); ++taken) {
        const TakeResult result = TryTake(all[taken], thread);
        if (result == TakeResult::No) break;
        abandoned = abandoned || result == TakeResult::TakenAbandoned;
    }
    if (taken == all.size()) return ResultOf(abandoned ? TakeResult::TakenAbandoned : TakeResult::Taken, 0);
    while (taken-- > 0) {
        if (all[taken].object->Kind() == ObjectKind::Mutex)
            static_cast<void>(static_cast<MutexObject*>(all[taken].object)->ReleaseLevel(thread));
        else if (all[taken].object->Page().manualReset == 0)
            static_cast<EventObject*>(all[taken].object)->Set();
    }
    return std::nullopt;
}

bool IsFree(const Waited& waited) {
    const uint32_t word = waited.object->Page().word.load(std::memory_order_acquire);
    if (waited.object->Kind() != ObjectKind::Mutex) return (word & kEventSignaled) != 0;
    return (word & kMutexOwner) == 0 || (word & kMutexOwner) == waited.token;
}

// Nothing can be had before the first of the missing objects changes.
void SleepOnMissing(std::span<const Waited> all, Moment until) {
    const auto missing = std::find_if_not(all.begin(), all.end(), IsFree);
    if (missing == all.end()) return;
    Waited now = *missing;
    now.wordAtStart = now.object->Page().word.load(std::memory_order_relaxed);
    SleepOnObjects({&now, 1}, until);
}

// Signals that are taken one by one must all be looked at first: taking and giving back would disturb others.
std::optional<DWORD> TakeAllIfFree(std::span<const Waited> all, ThreadRecord& thread) {
    return std::all_of(all.begin(), all.end(), IsFree) ? TakeAll(all, thread) : std::nullopt;
}

bool IsSetterHere(std::span<const Waited> all) {
    const uint32_t here = CurrentProcessor();
    return here != 0 && std::any_of(all.begin(), all.end(), [here](const Waited& waited) {
               return waited.object->Kind() == ObjectKind::Event &&
                      waited.object->Page().setterProcessor.load(std::memory_order_relaxed) == here;
           });
}

DWORD WaitFor(std::span<const Waited> all, bool waitAll, ThreadRecord& thread, DWORD milliseconds) {
    const auto look = [&] { return waitAll ? TakeAllIfFree(all, thread) : TakeAny(all, thread); };
    const Moment start = Now();
    const Moment deadline =
        milliseconds == INFINITE ? kNever : start + static_cast<Moment>(milliseconds) * kMillisecond;
    const Moment longest = HasMutex(all) ? kMutexLook : kNever;
    Poller poller(thread.polling, IsSetterHere(all));
    for (;;) {
        std::optional<DWORD> result;
        do {
            result = look();
        } while (!result && poller.Again());
        const Moment now = Now();
        if (!result && longest != kNever) NoticeDeadOwners(all);
        if (!result && now >= deadline) result = look();
        if (result || now >= deadline) {
            poller.Learn(now - start);
            return result.value_or(WAIT_TIMEOUT);
        }
        const Moment until = longest == kNever ? deadline : std::min(deadline, now + longest);
        if (waitAll)
            SleepOnMissing(all, until);
        else
            SleepOnObjects(all, until);
    }
}

DWORD WaitForMutex(MutexObject& mutex, uint32_t token, ThreadRecord& thread, DWORD milliseconds) {
    if (milliseconds == 0) mutex.NoticeDeadOwner();
    const TakeResult result = milliseconds == 0 ? mutex.TryTake(thread, token, false)
                                                : mutex.Take(thread, token, DeadlineAfter(milliseconds));
    return result == TakeResult::No ? WAIT_TIMEOUT : ResultOf(result, 0);
}

DWORD WaitForOne(HANDLE handle, DWORD milliseconds) {
    Waited waited;
    ObjectReference reference;
    {
        const UsedObject used(handle);
        if (!used) return WAIT_FAILED;
        waited.object = used.Get();
        if (!Prepare(waited, used.Thread())) return WAIT_FAILED;
        if (const TakeResult result = TryTake(waited, used.Thread()); result != TakeResult::No)
            return ResultOf(result, 0);
        reference = ObjectReference(waited.object);
    }
    ThreadRecord& thread = CurrentThread();
    if (waited.object->Kind() == ObjectKind::Mutex)
        return WaitForMutex(*static_cast<MutexObject*>(waited.object), waited.token, thread, milliseconds);
    return milliseconds == 0 ? WAIT_TIMEOUT : WaitFor({&waited, 1}, false, thread, milliseconds);
}

bool HasTwice(std::span<const Waited> all) {
    for (size_t i = 0; i < all.size(); ++i)
        for (size_t j = i + 1; j < all.size(); ++j)
            if (&all[i].object->Page() == &all[j].object->Page()) return true;
    return false;
}

DWORD WaitForSeveral(std::span<const HANDLE> handles, bool waitAll, DWORD milliseconds) {
    std::array<Waited, MAXIMUM_WAIT_OBJECTS> objects;
    std::array<ObjectReference, MAXIMUM_WAIT_OBJECTS> references;
    ThreadRecord& thread = CurrentThread();
    for (size_t i = 0; i < handles.size(); ++i) {
        const UsedObject used(handles[i]);
        if (!used) return WAIT_FAILED;
        objects[i].object = used.Get();
        if (!Prepare(objects[i], thread)) return WAIT_FAILED;
        references[i] = ObjectReference(used.Get());
    }
    const std::span<const Waited> all(objects.data(), handles.size());
    if (waitAll && HasTwice(all)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    return WaitFor(all, waitAll, thread, milliseconds);
}

// Memory is needed before a wait begins, if at all.
template <typename Wait>
DWORD Guarded(Wait wait) {
    try {
        return wait();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return WAIT_FAILED;
    }
}

}  // namespace

}  // namespace winport

using namespace winport;

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    return Guarded([&] { return WaitForOne(handle, milliseconds); });
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds) {
    if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || handles == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    return Guarded([&] { return WaitForSeveral({handles, count}, waitAll != FALSE, milliseconds); });
}
