// What winport keeps for a thread. Made at the thread's first call that needs it, given back when the thread
// ends; records are reused and never freed, so that any thread may look at all of them at any time.
#pragma once

#include <windows.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace winport {

class KernelObject;
class MutexObject;
class MessageQueue;

inline constexpr DWORD kTlsSlots = 64;

// How well polling has served a thread's waits of late.
struct PollHistory {
    int credit = 4;
    uint32_t waits = 0;
    uint32_t sleeps = 0;
};

// A wait for so many objects or fewer takes no references unless it sleeps.
inline constexpr size_t kWaitHazards = 2;

// First what every wait needs, on one cache line.
struct alignas(64) ThreadRecord {
    // The object that a short operation of this thread is using: it is not freed meanwhile (handle table).
    std::atomic<KernelObject*> hazard{nullptr};
    // Those that it waits for and looks at again and again. An object is named here before it leaves
    // `hazard`.
    std::array<std::atomic<KernelObject*>, kWaitHazards> waitHazards{};

    uint32_t localId = 0;     // unique among the threads of this process
    uint32_t ownerToken = 0;  // unique among all threads of all processes of the home; 0: not asked for yet
    uint32_t bell = 0;        // number of the bell at which it sleeps; 0: none yet
    MutexObject* heldMutexes = nullptr;  // the last taken first
    PollHistory polling;

    std::array<std::atomic<void*>, kTlsSlots> tls{};

    std::optional<SECURITY_IMPERSONATION_LEVEL> impersonation;  // none: it acts as its process
    HCURSOR cursor = nullptr;
    MessageQueue* messages = nullptr;  // made at the first call that asks for messages

    ThreadRecord* next = nullptr;  // all records, fixed once linked
    std::atomic<bool> inUse{false};
};

// The calling thread's record, null before its first use of winport. "initial-exec" and no run-time
// initialisation: reading it is one instruction, where a call is an eighth of an exchange.
extern constinit thread_local ThreadRecord* currentRecord __attribute__((tls_model("initial-exec")));

// What rooms above do when a thread begins or ends, on that thread; they register it while this library is
// loaded. At its end come first the notices, code of others that may use all of winport, and then the
// belongings, which are given back.
using ThreadCall = void (*)(ThreadRecord&);
void AtThreadStart(ThreadCall notice);
void AtThreadEnd(ThreadCall notice);
void GiveBackAtThreadEnd(ThreadCall belongings);

ThreadRecord& BeginThread();

// The calling thread's record.
inline ThreadRecord& CurrentThread() {
    ThreadRecord* const record = currentRecord;
    return record != nullptr ? *record : BeginThread();
}

// All records, in use or not; follow `next`.
ThreadRecord* FirstThreadRecord();

// True once another thread than the calling one has used winport in this process.
bool OtherThreads();

}  // namespace winport
