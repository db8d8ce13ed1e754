#include "winport/sync/mutex_object.h"

#include <algorithm>
#include <climits>
#include <mutex>
#include <utility>

#include "winport/sync/poller.h"

namespace winport {

namespace {

constexpr uint32_t kTurnTakes = 200;
constexpr uint32_t kTurnUs = 5'000;
constexpr Moment kUs = 1'000;
// How long the heir sleeps between looks: within a turn the release does not wake it.
constexpr Moment kHeirSleep = 200 * kUs;
// How often waiters ask whether the owner, or the heir, still lives.
constexpr Moment kLifeCheck = 25'000 * kUs;
constexpr uint32_t kSleepersPerLook = 4;

// Between the end of an object and the end of the thread that owns it.
std::mutex& OrphanLock() {
    static std::mutex lock;
    return lock;
}

// Whoever looks loses its place in the kernel's line: the longer that is, the less often each looks. And
// never at equal intervals: owners that die change every 25 ms as well, and a waiter in step with them would
// lose its place each time just before it counts.
Moment NextLook(uint32_t others) {
    constexpr uint64_t kScatter = 0x9E3779B97F4A7C15;
    const Moment now = Now();
    const Moment mean = kLifeCheck * (1 + others / kSleepersPerLook);
    const auto scattered = static_cast<Moment>((static_cast<uint64_t>(now) * kScatter) >> 32);
    return now + mean / 2 + scattered % mean;
}

uint32_t NowUs() {
    return static_cast<uint32_t>(Now() / kUs);
}

}  // namespace

MutexObject::MutexObject(ObjectMemory&& memory)
    : KernelObject(ObjectKind::Mutex, memory.Page()), memory_(std::move(memory)) {}

uint32_t MutexObject::TokenFor(ThreadRecord& thread) const {
    if (!IsNamed()) return thread.localId;
    if (thread.ownerToken == 0) thread.ownerToken = TakeOwnerToken();
    return thread.ownerToken;
}

bool MutexObject::MustGiveWay(uint32_t token) const {
    const ObjectPage& page = Page();
    const uint32_t heir = page.heir.load(std::memory_order_relaxed);
    if (heir == 0 || heir == token) return false;
    return page.lastOwner.load(std::memory_order_relaxed) != token || IsTurnOver();
}

bool MutexObject::IsTurnOver() const {
    const ObjectPage& page = Page();
    return page.turnTakes.load(std::memory_order_relaxed) >= kTurnTakes ||
           NowUs() - page.turnStart.load(std::memory_order_relaxed) > kTurnUs;
}

void MutexObject::BeginOwnership(ThreadRecord& thread, uint32_t token) {
    ObjectPage& page = Page();
    page.recursion.store(1, std::memory_order_relaxed);
    if (page.lastOwner.load(std::memory_order_relaxed) != token) {
        page.lastOwner.store(token, std::memory_order_relaxed);
        page.turnStart.store(NowUs(), std::memory_order_relaxed);
        page.turnTakes.store(0, std::memory_order_relaxed);
    }
    page.turnTakes.store(page.turnTakes.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    EnterList(thread);
}

void MutexObject::EnterList(ThreadRecord& thread) {
    heldHere_.store(true, std::memory_order_relaxed);
    previousHeld_ = nullptr;
    nextHeld_ = thread.heldMutexes;
    if (nextHeld_ != nullptr) nextHeld_->previousHeld_ = this;
    thread.heldMutexes = this;
}

void MutexObject::LeaveList(ThreadRecord& thread) {
    if (nextHeld_ != nullptr) nextHeld_->previousHeld_ = previousHeld_;
    (previousHeld_ != nullptr ? previousHeld_->nextHeld_ : thread.heldMutexes) = nextHeld_;
    heldHere_.store(false, std::memory_order_relaxed);
}

TakeResult MutexObject::TryTake(ThreadRecord& thread, uint32_t token, bool outOfTurn) {
    ObjectPage& page = Page();
    uint32_t word = page.word.load(std::memory_order_relaxed);
    if ((word & kMutexOwner) == token) {
        page.recursion.store(page.recursion.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        return TakeResult::Taken;
    }
    while ((word & kMutexOwner) == 0) {
        if (!outOfTurn && MustGiveWay(token)) return TakeResult::No;
        if (page.word.compare_exchange_weak(word, token | (word & kMutexSleeper), std::memory_order_acquire,
                                            std::memory_order_relaxed)) {
            BeginOwnership(thread, token);
            return (word & kMutexAbandoned) != 0 ? TakeResult::TakenAbandoned : TakeResult::Taken;
        }
    }
    return TakeResult::No;
}

void MutexObject::NoticeDeadOwner() {
    ObjectPage& page = Page();
    uint32_t word = page.word.load(std::memory_order_relaxed);
    const uint32_t owner = word & kMutexOwner;
    if (owner == 0 || !IsNamed() || IsOwnerAlive(owner)) return;
    // One of those who notice makes the change; the mutex is then taken, once, by whoever comes first.
    if (page.word.compare_exchange_strong(word, kMutexAbandoned, std::memory_order_acq_rel))
        Wake(page.word, INT_MAX);
}

bool MutexObject::ReleaseLevel(ThreadRecord& thread) {
    ObjectPage& page = Page();
    const uint32_t token = IsNamed() ? thread.ownerToken : thread.localId;
    if (token == 0 || (page.word.load(std::memory_order_relaxed) & kMutexOwner) != token) return false;
    const uint32_t levels = page.recursion.load(std::memory_order_relaxed) - 1;
    page.recursion.store(levels, std::memory_order_relaxed);
    if (levels != 0) return true;
    LeaveList(thread);
    // A sleeping heir wakes by itself within a turn; at the turn's end it is woken.
    const uint32_t before = page.word.fetch_and(kMutexSleeper, std::memory_order_release);
    if ((before & kMutexSleeper) != 0 && NowUs() - page.turnStart.load(std::memory_order_relaxed) > kTurnUs) {
        page.word.fetch_and(~kMutexSleeper, std::memory_order_relaxed);
        Wake(page.word, INT_MAX);
    }
    return true;
}

void MutexObject::Abandon(uint32_t token) {
    ObjectPage& page = Page();
    uint32_t word = page.word.load(std::memory_order_relaxed);
    if ((word & kMutexOwner) != token) return;
    if (page.word.compare_exchange_strong(word, kMutexAbandoned, std::memory_order_release))
        Wake(page.word, INT_MAX);
    else
        Abandon(token);  // a waiter has just announced that it sleeps
}

TakeResult MutexObject::Take(ThreadRecord& thread, uint32_t token, Moment deadline) {
    ObjectPage& page = Page();
    for (bool queued = false;;) {
        uint32_t heir = page.heir.load(std::memory_order_acquire);
        // A place behind an heir that died is taken over; one that is kept for a sleeper is for sleepers.
        const bool isDead = queued && heir != 0 && heir != kHeirToCome && IsNamed() && !IsOwnerAlive(heir);
        const bool isVacant = heir == 0 || (heir == kHeirToCome && queued) || isDead;
        if (isVacant && page.heir.compare_exchange_strong(heir, token, std::memory_order_acq_rel)) {
            const TakeResult result = WaitAsHeir(thread, token, deadline);
            LeaveHeirship(token);
            return result;
        }
        if (Now() >= deadline) return TryTake(thread, token, true);
        queued = SleepInQueue(deadline);
    }
}

TakeResult MutexObject::WaitAsHeir(ThreadRecord& thread, uint32_t token, Moment deadline) {
    ObjectPage& page = Page();
    Poller poller(thread.polling, false);
    Moment nextLifeCheck = Now() + kLifeCheck;
    for (;;) {
        TakeResult result;
        do {
            result = TryTake(thread, token, true);
        } while (result == TakeResult::No && poller.Again());
        if (result != TakeResult::No) return result;
        const Moment now = Now();
        if (now >= nextLifeCheck || now >= deadline) {
            NoticeDeadOwner();
            nextLifeCheck = now + kLifeCheck;
        }
        if (now >= deadline) return TryTake(thread, token, true);
        uint32_t word = page.word.load(std::memory_order_relaxed);
        if ((word & kMutexOwner) == 0) continue;
        if ((word & kMutexSleeper) == 0 &&
            !page.word.compare_exchange_strong(word, word | kMutexSleeper, std::memory_order_relaxed))
            continue;
        // An owner within its turn does not wake the heir, one that holds the mutex longer does.
        const Moment look = IsTurnOver() ? nextLifeCheck : now + kHeirSleep;
        const SleepWord sleep = {&page.word, word | kMutexSleeper};
        SleepOn({&sleep, 1}, std::min(look, deadline));
    }
}

bool MutexObject::SleepInQueue(Moment deadline) {
    ObjectPage& page = Page();
    const uint32_t place = page.queue.load(std::memory_order_acquire);
    const uint32_t others = page.queueSleepers.fetch_add(1, std::memory_order_seq_cst);
    bool mayInherit = false;
    if (page.heir.load(std::memory_order_seq_cst) != 0) {
        const SleepWord sleep = {&page.queue, place};
        const Moment longest = NextLook(others);
        mayInherit = SleepOn({&sleep, 1}, std::min(longest, deadline)) || Now() >= longest;
    }
    uint32_t sleepers = page.queueSleepers.load(std::memory_order_relaxed);
    while (sleepers != 0 && !page.queueSleepers.compare_exchange_weak(sleepers, sleepers - 1)) {
    }
    return mayInherit;
}

// The place is kept for the sleeper that is woken: a thread that has just had its turn must not come before.
void MutexObject::LeaveHeirship(uint32_t token) {
    ObjectPage& page = Page();
    uint32_t heir = token;
    const bool anySleeps = page.queueSleepers.load(std::memory_order_seq_cst) != 0;
    if (!page.heir.compare_exchange_strong(heir, anySleeps ? kHeirToCome : 0, std::memory_order_seq_cst))
        return;
    page.queue.fetch_add(1, std::memory_order_seq_cst);
    if (Wake(page.queue, 1) != 0 || !anySleeps) return;
    // Only the count was left, of sleepers that were killed or have just gone.
    page.queueSleepers.store(0, std::memory_order_relaxed);
    heir = kHeirToCome;
    page.heir.compare_exchange_strong(heir, 0, std::memory_order_seq_cst);
    Wake(page.queue, 1);
}

void MutexObject::End() {
    bool owned = false;
    {
        const std::lock_guard guard(OrphanLock());
        owned = orphan_ = heldHere_.load(std::memory_order_relaxed);
    }
    if (!owned) delete this;
}

void AbandonHeldMutexes(ThreadRecord& thread) {
    {
        const std::lock_guard guard(OrphanLock());
        MutexObject* next = nullptr;
        for (MutexObject* mutex = std::exchange(thread.heldMutexes, nullptr); mutex != nullptr;
             mutex = next) {
            next = mutex->nextHeld_;
            mutex->Abandon(mutex->IsNamed() ? thread.ownerToken : thread.localId);
            mutex->heldHere_.store(false, std::memory_order_relaxed);
            if (mutex->orphan_) delete mutex;
        }
    }
    if (thread.ownerToken != 0) GiveBackOwnerToken(thread.ownerToken);
    thread.ownerToken = 0;
}

namespace {

[[gnu::constructor]] void RegisterThreadEnd() {
    GiveBackAtThreadEnd(AbandonHeldMutexes);
}

}  // namespace

}  // namespace winport
