// What winport keeps for a thread. Made at the thread's first call that needs it, given back when the thread
// ends; records are reused and never freed, so that any thread may look at all of them at any time.
#pragma once

#include <windows.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>

namespace winport {

class KernelObject;
class MutexObject;
class MessageQueue;

inline constexpr DWORD kTlsSlots = 64;

// How well polling has served a thread's waits of late.
struct PollHistory {
    int credit = 4;
    uint32_t waits = 0;
};

struct ThreadRecord {
    // The object that a short operation of this thread is using: it is not freed meanwhile (handle table).
    std::atomic<KernelObject*> hazard{nullptr};

    std::array<std::atomic<void*>, kTlsSlots> tls{};

    uint32_t localId = 0;     // unique among the threads of this process
    uint32_t ownerToken = 0;  // unique among all threads of all processes of the home; 0: not asked for yet
    std::vector<MutexObject*> heldMutexes;
    PollHistory polling;

    std::optional<SECURITY_IMPERSONATION_LEVEL> impersonation;  // none: it acts as its process
    HCURSOR cursor = nullptr;
    MessageQueue* messages = nullptr;  // made at the first call that asks for messages

    ThreadRecord* next = nullptr;  // all records, fixed once linked
    std::atomic<bool> inUse{false};
};

// The calling thread's record.
ThreadRecord& CurrentThread();

// All records, in use or not; follow `next`.
ThreadRecord* FirstThreadRecord();

// True once a second thread has used winport in this process.
bool SeveralThreads();

}  // namespace winport
