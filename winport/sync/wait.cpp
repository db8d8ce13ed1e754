// Waits: look; poll for a short while where that pays; sleep on all words at once; look again, also before a
// time-out is reported.
#include <windows.h>

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <span>

#include "winport/handles/handle_table.h"
#include "winport/sync/bells.h"
#include "winport/sync/event_object.h"
#include "winport/sync/futex.h"
#include "winport/sync/mutex_object.h"
#include "winport/sync/poller.h"

namespace winport {

namespace {

constexpr Moment kMillisecond = 1'000'000;
// A mutex among several objects has no heir: its release may wake nobody, so the wait looks by itself.
constexpr Moment kMutexLook = kMillisecond;
// Whoever sets an event may be killed before it wakes those who sleep.
constexpr Moment kEventLook = 1000 * kMillisecond;

Moment DeadlineAfter(DWORD milliseconds, Moment start) {
    return milliseconds == INFINITE ? kNever : start + static_cast<Moment>(milliseconds) * kMillisecond;
}

// One object of a wait. What is no mutex is an event: a program's end is one that is set once.
struct Waited {
    KernelObject* object;
    uint32_t wordAtStart;  // events
    uint32_t token;        // mutexes
};

bool Prepare(Waited& waited, ThreadRecord& thread) {
    if (!waited.object->CanWait()) {
        // Handles to these never carry the right to wait, and rights come before kinds.
        const ObjectKind kind = waited.object->Kind();
        const bool hasNoRight = kind == ObjectKind::Section || kind == ObjectKind::Token;
        SetLastError(hasNoRight ? ERROR_ACCESS_DENIED : ERROR_INVALID_HANDLE);
        return false;
    }
    if (waited.object->Kind() == ObjectKind::Mutex) {
        waited.token = static_cast<MutexObject*>(waited.object)->TokenFor(thread);
        return waited.token != 0;
    }
    waited.wordAtStart = waited.object->Page().word.load(std::memory_order_relaxed);
    return true;
}

// The mutex that an object is, or null.
MutexObject* AsMutex(const Waited& waited) {
    return waited.object->Kind() == ObjectKind::Mutex ? static_cast<MutexObject*>(waited.object) : nullptr;
}

TakeResult TryTake(const Waited& waited, ThreadRecord& thread, bool outOfTurn) {
    if (MutexObject* const mutex = AsMutex(waited)) return mutex->TryTake(thread, waited.token, outOfTurn);
    return TakeEvent(*waited.object, waited.wordAtStart) ? TakeResult::Taken : TakeResult::No;
}

DWORD ResultOf(TakeResult result, DWORD index) {
    return (result == TakeResult::TakenAbandoned ? WAIT_ABANDONED_0 : WAIT_OBJECT_0) + index;
}

// Says in the object's word that somebody sleeps on it. False when the object is to be looked at again.
bool AnnounceSleep(const Waited& waited, SleepWord& sleep) {
    ObjectPage& page = waited.object->Page();
    const MutexObject* const mutex = AsMutex(waited);
    const uint32_t flag = mutex == nullptr ? kEventSleepers : kMutexSleeper;
    uint32_t word = page.word.load(std::memory_order_relaxed);
    if (mutex != nullptr ? mutex->IsFreeFor(waited.token, false) : (word & kEventSignaled) != 0) return false;
    if (mutex == nullptr && waited.object->IsManualReset() &&
        word / kEventSetCount != waited.wordAtStart / kEventSetCount)
        return false;
    if ((word & flag) == 0 &&
        !page.word.compare_exchange_strong(word, word | flag, std::memory_order_acq_rel))
        return false;
    sleep = {&page.word, word | flag};
    return true;
}

// ---- any one ----

std::optional<DWORD> TakeAny(std::span<const Waited> all, ThreadRecord& thread, bool outOfTurn) {
    for (DWORD i = 0; i < all.size(); ++i)
        if (const TakeResult result = TryTake(all[i], thread, outOfTurn); result != TakeResult::No)
            return ResultOf(result, i);
    return std::nullopt;
}

void NoticeDeaths(std::span<const Waited> all) {
    for (const Waited& waited : all)
        if (MutexObject* const mutex = AsMutex(waited)) mutex->NoticeDeaths();
}

bool HasMutex(std::span<const Waited> all) {
    return std::any_of(all.begin(), all.end(),
                       [](const Waited& waited) { return AsMutex(waited) != nullptr; });
}

// Sleeps until one of the objects may have changed, or until the moment.
void SleepOnObjects(std::span<const Waited> all, Moment until) {
    std::array<SleepWord, MAXIMUM_WAIT_OBJECTS> words;
    for (size_t i = 0; i < all.size(); ++i)
        if (!AnnounceSleep(all[i], words[i])) return;
    SleepOn({words.data(), all.size()}, until);
}

bool HaveRoomForBell(std::span<const Waited> all) {
    return std::all_of(all.begin(), all.end(), [](const Waited& waited) {
        return waited.object->Kind() == ObjectKind::Event && !waited.object->IsManualReset();
    });
}

// False when that cannot be and nothing was done but leaving numbers.
bool SleepAtBell(std::span<const Waited> all, ThreadRecord& thread, bool wakeOthers, Moment until) {
    const BellSleep sleep(thread);
    if (!sleep) return false;
    for (const Waited& waited : all) {
        const BellSleep::Place place = sleep.LeaveNumber(waited.object->Page(), wakeOthers);
        if (place != BellSleep::Place::Taken) return place == BellSleep::Place::EventIsSet;
    }
    sleep.Sleep(until);
    return true;
}

// Sleeps until one of the objects may have changed, or until the moment. Others are woken for their place
// once in a wait, or two that wait for the same would never rest.
void SleepOnAny(std::span<const Waited> all, ThreadRecord& thread, bool wakeOthers, Moment until) {
    if (all.size() == 1 || !HaveRoomForBell(all) || !SleepAtBell(all, thread, wakeOthers, until))
        SleepOnObjects(all, until);
}

// ---- all at once or none ----

// Takes every object, or gives back what it took of them. Others may see a signal vanish and come back within
// this call, but never a part of the objects kept.
std::optional<DWORD> TakeAll(std::span<const Waited> all, ThreadRecord& thread, bool outOfTurn) {
    std::array<TakeResult, MAXIMUM_WAIT_OBJECTS> results;
    bool abandoned = false;
    size_t taken = 0;
    for (; taken < all.size(); ++taken) {
        results[taken] = TryTake(all[taken], thread, outOfTurn);
        if (results[taken] == TakeResult::No) break;
        abandoned = abandoned || results[taken] == TakeResult::TakenAbandoned;
    }
    if (taken == all.size()) return ResultOf(abandoned ? TakeResult::TakenAbandoned : TakeResult::Taken, 0);
    while (taken-- > 0) {
        if (MutexObject* const mutex = AsMutex(all[taken]))
            mutex->GiveBack(thread, results[taken]);
        else if (!all[taken].object->IsManualReset())
            static_cast<EventObject*>(all[taken].object)->Set();
    }
    return std::nullopt;
}

bool IsFree(const Waited& waited, bool outOfTurn) {
    if (const MutexObject* const mutex = AsMutex(waited)) return mutex->IsFreeFor(waited.token, outOfTurn);
    return (waited.object->Page().word.load(std::memory_order_acquire) & kEventSignaled) != 0;
}

// Nothing can be had before the first of the missing objects changes.
void SleepOnMissing(std::span<const Waited> all, Moment until) {
    const auto missing =
        std::find_if_not(all.begin(), all.end(), [](const Waited& waited) { return IsFree(waited, false); });
    if (missing == all.end()) return;
    Waited now = *missing;
    now.wordAtStart = now.object->Page().word.load(std::memory_order_relaxed);
    SleepOnObjects({&now, 1}, until);
}

// Signals that are taken one by one must all be looked at first: taking and giving back would disturb others.
std::optional<DWORD> TakeAllIfFree(std::span<const Waited> all, ThreadRecord& thread, bool outOfTurn) {
    const auto isFree = [outOfTurn](const Waited& waited) { return IsFree(waited, outOfTurn); };
    return std::all_of(all.begin(), all.end(), isFree) ? TakeAll(all, thread, outOfTurn) : std::nullopt;
}

bool IsSetterHere(std::span<const Waited> all) {
    const uint32_t here = CurrentProcessor();
    return here != 0 && std::any_of(all.begin(), all.end(), [here](const Waited& waited) {
               return waited.object->Kind() == ObjectKind::Event &&
                      waited.object->Page().setterProcessor.load(std::memory_order_relaxed) == here;
           });
}

// The objects of one wait, which live as long as it does: by hazards while the wait only looks, by references
// once it sleeps or when they are many. There is room for 64; what is not used is never touched.
class WaitedObjects final {
  public:
    explicit WaitedObjects(size_t count) : thread_(CurrentThread()), byReference_(count > kWaitHazards) {}
    WaitedObjects(const WaitedObjects&) = delete;
    WaitedObjects& operator=(const WaitedObjects&) = delete;
    ~WaitedObjects() {
        if (byReference_)
            for (const Waited& waited : All())
                waited.object->Release();
        else
            ClearHazards();
    }

    // False with the last-error value when it cannot be waited for.
    [[nodiscard]] bool Add(HANDLE handle) {
        const UsedObject used(handle);
        if (!used) return false;
        Waited& waited = objects_[count_];
        waited.object = used.Get();
        if (!Prepare(waited, thread_)) return false;
        if (byReference_)
            waited.object->AddReference();
        else
            thread_.waitHazards[count_].store(waited.object, std::memory_order_release);
        ++count_;
        return true;
    }

    // Before it sleeps: whoever closes a handle waits for hazards, and must not wait for long.
    void TakeReferences() {
        if (byReference_) return;
        for (const Waited& waited : All())
            waited.object->AddReference();
        ClearHazards();
        byReference_ = true;
    }
    [[nodiscard]] ThreadRecord& Thread() const { return thread_; }
    [[nodiscard]] std::span<const Waited> All() const { return {objects_.data(), count_}; }

  private:
    void ClearHazards() {
        for (auto& hazard : thread_.waitHazards)
            hazard.store(nullptr, std::memory_order_release);
    }

    ThreadRecord& thread_;
    bool byReference_;
    std::array<Waited, MAXIMUM_WAIT_OBJECTS> objects_;
    size_t count_ = 0;
};

std::optional<DWORD> Look(const WaitedObjects& objects, bool waitAll, bool outOfTurn) {
    return waitAll ? TakeAllIfFree(objects.All(), objects.Thread(), outOfTurn)
                   : TakeAny(objects.All(), objects.Thread(), outOfTurn);
}

// The clock is not read before looking has failed: an answer mostly comes sooner than that would pay.
[[gnu::noinline]] DWORD WaitLonger(WaitedObjects& objects, bool waitAll, DWORD milliseconds) {
    const std::span<const Waited> all = objects.All();
    ThreadRecord& thread = objects.Thread();
    Poller poller(thread.polling, IsSetterHere(all));
    std::optional<DWORD> result;
    while (!result && milliseconds != 0 && poller.Again())
        result = Look(objects, waitAll, false);
    if (result) {
        poller.Learn(0);
        return *result;
    }
    objects.TakeReferences();
    const Moment start = Now();
    const Moment deadline = DeadlineAfter(milliseconds, start);
    const bool hasMutex = HasMutex(all);
    const Moment longest = hasMutex ? kMutexLook : kEventLook;
    for (Moment now = start;; now = Now()) {
        if (hasMutex) NoticeDeaths(all);
        if (now >= deadline) break;
        const Moment until = std::min(deadline, now + longest);
        if (waitAll)
            SleepOnMissing(all, until);
        else
            SleepOnAny(all, thread, now == start, until);
        // Whoever has waited this long needs no place in a line.
        result = Look(objects, waitAll, true);
        if (result) break;
    }
    if (!result) result = Look(objects, waitAll, milliseconds != 0);
    poller.Learn(Now() - start);
    return result.value_or(WAIT_TIMEOUT);
}

DWORD WaitFor(WaitedObjects& objects, bool waitAll, DWORD milliseconds) {
    const std::optional<DWORD> atOnce = Look(objects, waitAll, false);
    if (!atOnce) return WaitLonger(objects, waitAll, milliseconds);
    Poller::LearnFromNone(objects.Thread().polling);
    return *atOnce;
}

DWORD WaitForMutex(MutexObject& mutex, uint32_t token, ThreadRecord& thread, DWORD milliseconds) {
    if (milliseconds == 0) mutex.NoticeDeaths();
    const TakeResult result = milliseconds == 0
                                  ? mutex.TryTake(thread, token, false)
                                  : mutex.Take(thread, token, DeadlineAfter(milliseconds, Now()));
    return result == TakeResult::No ? WAIT_TIMEOUT : ResultOf(result, 0);
}

// What is mostly so: the object is to be had at once.
std::optional<DWORD> TakeAtOnce(HANDLE handle) {
    const UsedObject used(handle);
    if (!used) return WAIT_FAILED;
    TakeResult result = TakeResult::No;
    if (used.Get()->Kind() == ObjectKind::Mutex) {
        auto& mutex = *static_cast<MutexObject*>(used.Get());
        const uint32_t token = mutex.TokenFor(used.Thread());
        if (token == 0) return WAIT_FAILED;
        result = mutex.TryTake(used.Thread(), token, false);
    } else if (used.Get()->Kind() == ObjectKind::Event) {
        const uint32_t word = used.Get()->Page().word.load(std::memory_order_relaxed);
        if (TakeEvent(*used.Get(), word)) result = TakeResult::Taken;
    }
    return result != TakeResult::No ? std::optional(ResultOf(result, 0)) : std::nullopt;
}

DWORD WaitForOne(HANDLE handle, DWORD milliseconds) {
    if (const std::optional<DWORD> result = TakeAtOnce(handle)) return *result;
    WaitedObjects objects(1);
    if (!objects.Add(handle)) return WAIT_FAILED;
    const Waited& waited = objects.All().front();
    if (waited.object->Kind() != ObjectKind::Mutex)
        return milliseconds == 0 ? WAIT_TIMEOUT : WaitFor(objects, false, milliseconds);
    objects.TakeReferences();
    return WaitForMutex(*static_cast<MutexObject*>(waited.object), waited.token, objects.Thread(),
                        milliseconds);
}

bool HasTwice(std::span<const Waited> all) {
    for (size_t i = 0; i < all.size(); ++i)
        for (size_t j = i + 1; j < all.size(); ++j)
            if (&all[i].object->Page() == &all[j].object->Page()) return true;
    return false;
}

DWORD WaitForSeveral(std::span<const HANDLE> handles, bool waitAll, DWORD milliseconds) {
    WaitedObjects objects(handles.size());
    for (HANDLE handle : handles)
        if (!objects.Add(handle)) return WAIT_FAILED;
    if (waitAll && HasTwice(objects.All())) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    return WaitFor(objects, waitAll, milliseconds);
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
