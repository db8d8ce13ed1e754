// Mutexes with turns, and with owners that may die.
//
// A mutex that was taken is not passed on at each release: its owner may take it again, without asking the
// system, until its turn (200 takes or 5 ms) is over, because a change of owners costs a wake-up.
// Then it lets the heir go first, the one waiter that looks often. So a busy owner is fast and nobody
// starves.
//
// An owner is named by its thread's token. Whoever waits asks now and then whether the owner still lives; a
// dead one's mutex is taken over and reported as abandoned. A thread that ends releases what it holds itself.
// A place in line may be a dead one's too: whoever is held up by it at a free mutex asks for that as well.
#pragma once

#include <cstdint>

#include "winport/handles/kernel_object.h"
#include "winport/handles/object_store.h"
#include "winport/sync/futex.h"
#include "winport/threads/thread_record.h"

namespace winport {

enum class TakeResult { No, Taken, TakenAbandoned };

class alignas(64) MutexObject final : public KernelObject {
  public:
    explicit MutexObject(ObjectMemory&& memory);
    static KernelObject* Make(ObjectMemory&& memory) { return new MutexObject(std::move(memory)); }

    // The number by which this mutex knows the thread; 0 with the last-error value when none can be had.
    [[nodiscard]] uint32_t TokenFor(ThreadRecord& thread) const {
        if (isNamed_ && thread.ownerToken == 0) thread.ownerToken = TakeOwnerToken();
        return OwnToken(thread);
    }

    // Whether the mutex is to be had: it is free, or the thread's already. A thread whose turn is over, or
    // has not come, does not get it while an heir waits, unless `outOfTurn`.
    [[nodiscard]] bool IsFreeFor(uint32_t token, bool outOfTurn) const;
    // Takes it if it is to be had.
    [[nodiscard]] TakeResult TryTake(ThreadRecord& thread, uint32_t token, bool outOfTurn);
    // Asks the system whether those who stand in the way live: makes a dead owner's mutex an abandoned, free
    // one, and passes a dead heir's place on.
    void NoticeDeaths();
    // Waits in the line of this mutex until the moment.
    [[nodiscard]] TakeResult Take(ThreadRecord& thread, uint32_t token, Moment deadline);

    // What a creator that asked for it becomes before anybody else can see the mutex.
    void BeginOwnership(ThreadRecord& thread, uint32_t token);
    // False when the thread does not own it.
    [[nodiscard]] bool ReleaseLevel(ThreadRecord& thread);
    // Undoes a take: the next one gets the same result.
    void GiveBack(ThreadRecord& thread, TakeResult taken);

    [[nodiscard]] bool IsNamed() const { return isNamed_; }

  protected:
    void LastHandleClosed() override { ForgetName(this, memory_); }
    // A mutex whose last handle is closed while a thread of this process owns it stays until that thread
    // ends.
    void End() override;

  private:
    friend void AbandonHeldMutexes(ThreadRecord& thread);

    [[nodiscard]] uint32_t OwnToken(const ThreadRecord& thread) const {
        return isNamed_ ? thread.ownerToken : thread.localId;
    }
    [[nodiscard]] bool IsDead(uint32_t token) const;
    [[nodiscard]] bool MustGiveWay(uint32_t token) const;
    void Abandon(uint32_t token);
    [[nodiscard]] bool ReleaseSlowly(ThreadRecord& thread);  // always true

    [[nodiscard]] TakeResult WaitAsHeir(ThreadRecord& thread, uint32_t token, Moment deadline);
    // True when the thread was woken to become the heir, or has slept so long that it may see to it itself.
    [[nodiscard]] bool SleepInQueue(Moment deadline);
    void NoticeDeadHeir();
    void PassPlaceOn(uint32_t heir);
    [[nodiscard]] bool WakeNextInQueue();

    void EnterList(ThreadRecord& thread);
    void LeaveList(ThreadRecord& thread);
    void Unlink(ThreadRecord& thread);
    void UnlinkPredecessor(ThreadRecord& thread);

    const bool isNamed_;
    // By a thread of this process, in whose list it then stands. A list of links: taking needs no memory.
    std::atomic<bool> heldHere_{false};
    bool orphan_ = false;
    MutexObject* nextHeld_ = nullptr;
    MutexObject* previousHeld_ = nullptr;
    ObjectMemory memory_;  // last: taking and giving back touch one cache line of this
};

// Releases everything that an ending thread holds, and gives its token back.
void AbandonHeldMutexes(ThreadRecord& thread);

}  // namespace winport
