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
// The killed are counted among the sleepers until nobody sleeps: nobody waits for the look of so many.
constexpr uint32_t kMostSleepers = 256;

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
    const Moment mean = kLifeCheck * (1 + std::min(others, kMostSleepers) / kSleepersPerLook);
    const auto scattered = static_cast<Moment>((static_cast<uint64_t>(now) * kScatter) >> 32);
    return now + mean / 2 + scattered % mean;
}

uint32_t NowUs() {
    return static_cast<uint32_t>(Now() / kUs);
}

// A turn as its page tells it.
struct Turn {
    uint32_t start;
    uint32_t takes;

    explicit Turn(const ObjectPage& page)
        : start(page.turnStart.load(std::memory_order_relaxed)),
          takes(page.turnTakes.load(std::memory_order_relaxed)) {}
    [[nodiscard]] bool IsOver() const { return takes >= kTurnTakes || NowUs() - start > kTurnUs; }
};

}  // namespace

MutexObject::MutexObject(ObjectMemory&& memory)
    : KernelObject(ObjectKind::Mutex, memory.Page()),
      isNamed_(memory.IsNamed()),
      memory_(std::move(memory)) {}

// Threads of one process do not die unseen.
bool MutexObject::IsDead(uint32_t token) const {
    return IsNamed() && !IsOwnerAlive(token);
}

bool MutexObject::MustGiveWay(uint32_t token) const {
    const ObjectPage& page = Page();
    const uint32_t heir = page.heir.load(std::memory_order_relaxed);
    if (heir == 0 || heir == token) return false;
    return page.lastOwner.load(std::memory_order_relaxed) != token || Turn(page).IsOver();
}

bool MutexObject::IsFreeFor(uint32_t token, bool outOfTurn) const {
    const uint32_t owner = Page().word.load(std::memory_order_acquire) & kMutexOwner;
    return owner == token || (owner == 0 && (outOfTurn || !MustGiveWay(token)));
}

void MutexObject::BeginOwnership(ThreadRecord& thread, uint32_t token) {
    ObjectPage& page = Page();
    page.recursion.store(1, std::memory_order_relaxed);
    if (page.lastOwner.load(std::memory_order_relaxed) != token) {
        // Beside an heir the turn goes on, whoever owns it meanwhile: else it would wait for a turn of each.
        const uint32_t heir = page.heir.load(std::memory_order_relaxed);
        if (heir == 0 || heir == token) {
            page.turnStart.store(NowUs(), std::memory_order_relaxed);
            page.turnTakes.store(0, std::memory_order_relaxed);
        }
        // Last: who finds the owner here finds its turn as well.
        page.lastOwner.store(token, std::memory_order_release);
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

inline void MutexObject::Unlink(ThreadRecord& thread) {
    if (nextHeld_ != nullptr) nextHeld_->previousHeld_ = previousHeld_;
    (previousHeld_ != nullptr ? previousHeld_->nextHeld_ : thread.heldMutexes) = nextHeld_;
    heldHere_.store(false, std::memory_order_relaxed);
}

void MutexObject::LeaveList(ThreadRecord& thread) {
    if (heldHere_.load(std::memory_order_relaxed))
        Unlink(thread);
    else
        UnlinkPredecessor(thread);
}

// Another object of this mutex entered the list when its last handle was closed and the name opened anew
// while the thread owned it.
void MutexObject::UnlinkPredecessor(ThreadRecord& thread) {
    MutexObject* entered = thread.heldMutexes;
    while (entered != nullptr && !(entered->IsNamed() && entered->memory_.Inode() == memory_.Inode()))
        entered = entered->nextHeld_;
    if (entered == nullptr) return;
    const std::lock_guard guard(OrphanLock());
    entered->Unlink(thread);
    if (entered->orphan_) delete entered;
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

void MutexObject::NoticeDeaths() {
    const uint32_t owner = Page().word.load(std::memory_order_relaxed) & kMutexOwner;
    if (owner != 0 && IsDead(owner)) Abandon(owner);
    NoticeDeadHeir();
}

// Only beside a free mutex does it stand in the way. A place is kept for a sleeper from the beginning of a
// turn, which is soon found to be over when the sleeper was killed on its way.
void MutexObject::NoticeDeadHeir() {
    const ObjectPage& page = Page();
    if ((page.word.load(std::memory_order_relaxed) & kMutexOwner) != 0) return;
    const uint32_t heir = page.heir.load(std::memory_order_acquire);
    if (heir == 0) return;
    const bool isGone = heir == kHeirToCome ? NowUs() - Turn(page).start > kLifeCheck / kUs : IsDead(heir);
    if (isGone) PassPlaceOn(heir);
}

bool MutexObject::ReleaseLevel(ThreadRecord& thread) {
    ObjectPage& page = Page();
    const uint32_t token = OwnToken(thread);
    uint32_t word = page.word.load(std::memory_order_relaxed);
    if (token == 0 || (word & kMutexOwner) != token) return false;
    const uint32_t levels = page.recursion.load(std::memory_order_relaxed) - 1;
    page.recursion.store(levels, std::memory_order_relaxed);
    if (levels != 0) return true;
    // Mostly it was taken through this object and nobody sleeps.
    if (word == token && heldHere_.load(std::memory_order_relaxed)) {
        Unlink(thread);
        if (page.word.compare_exchange_strong(word, 0, std::memory_order_release, std::memory_order_relaxed))
            return true;
    }
    return ReleaseSlowly(thread);
}

bool MutexObject::ReleaseSlowly(ThreadRecord& thread) {
    LeaveList(thread);
    ObjectPage& page = Page();
    const Turn turn(page);  // before it is another's
    // A sleeping heir wakes by itself within a turn; at the turn's end it is woken.
    const uint32_t before = page.word.fetch_and(kMutexSleeper, std::memory_order_release);
    if ((before & kMutexSleeper) != 0 && turn.IsOver()) {
        page.word.fetch_and(~kMutexSleeper, std::memory_order_relaxed);
        Wake(page.word, INT_MAX);
    }
    return true;
}

void MutexObject::GiveBack(ThreadRecord& thread, TakeResult taken) {
    if (taken == TakeResult::TakenAbandoned) {
        LeaveList(thread);
        Abandon(OwnToken(thread));
    } else {
        static_cast<void>(ReleaseLevel(thread));
    }
}

// One of those who notice a death makes the change; the mutex is then taken, once, by whoever comes first.
void MutexObject::Abandon(uint32_t token) {
    ObjectPage& page = Page();
    uint32_t word = page.word.load(std::memory_order_relaxed);
    do {
        if ((word & kMutexOwner) != token) return;
    } while (!page.word.compare_exchange_weak(word, kMutexAbandoned, std::memory_order_acq_rel,
                                              std::memory_order_relaxed));
    Wake(page.word, INT_MAX);
}

TakeResult MutexObject::Take(ThreadRecord& thread, uint32_t token, Moment deadline) {
    ObjectPage& page = Page();
    NoticeDeadHeir();
    for (bool queued = false;;) {
        uint32_t heir = page.heir.load(std::memory_order_acquire);
        // A place behind an heir that died is taken over; one that is kept for a sleeper is for sleepers.
        const bool isDead = queued && heir != 0 && heir != kHeirToCome && IsDead(heir);
        const bool isVacant = heir == 0 || (heir == kHeirToCome && queued) || isDead;
        if (isVacant && page.heir.compare_exchange_strong(heir, token, std::memory_order_acq_rel)) {
            const TakeResult result = WaitAsHeir(thread, token, deadline);
            PassPlaceOn(token);
            return result;
        }
        if (Now() >= deadline) {
            NoticeDeaths();
            return TryTake(thread, token, true);
        }
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
            NoticeDeaths();
            nextLifeCheck = now + kLifeCheck;
        }
        if (now >= deadline) return TryTake(thread, token, true);
        uint32_t word = page.word.load(std::memory_order_relaxed);
        if ((word & kMutexOwner) == 0) continue;
        if ((word & kMutexSleeper) == 0 &&
            !page.word.compare_exchange_strong(word, word | kMutexSleeper, std::memory_order_relaxed))
            continue;
        // An owner within its turn does not wake the heir, one that holds the mutex longer does.
        const bool isOwnersTurn = page.lastOwner.load(std::memory_order_acquire) == (word & kMutexOwner);
        const Moment look = isOwnersTurn && Turn(page).IsOver() ? nextLifeCheck : now + kHeirSleep;
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

bool MutexObject::WakeNextInQueue() {
    Page().queue.fetch_add(1, std::memory_order_seq_cst);
    return Wake(Page().queue, 1) != 0;
}

// The place is kept for the sleeper that is woken: a thread that has just had its turn must not come before.
void MutexObject::PassPlaceOn(uint32_t heir) {
    ObjectPage& page = Page();
    const bool anySleeps = page.queueSleepers.load(std::memory_order_seq_cst) != 0;
    if (!page.heir.compare_exchange_strong(heir, anySleeps ? kHeirToCome : 0, std::memory_order_seq_cst))
        return;
    if (WakeNextInQueue() || !anySleeps) return;
    // Only the count was left, of sleepers that were killed or have just gone. One that has come since may
    // have seen the place kept.
    page.queueSleepers.store(0, std::memory_order_relaxed);
    heir = kHeirToCome;
    if (page.heir.compare_exchange_strong(heir, 0, std::memory_order_seq_cst))
        static_cast<void>(WakeNextInQueue());
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
            mutex->heldHere_.store(false, std::memory_order_relaxed);  // before it is another thread's
            mutex->Abandon(mutex->OwnToken(thread));
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
