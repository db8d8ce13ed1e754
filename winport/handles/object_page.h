// How a kernel object lies in memory: the first page of its file, or of private memory when it has no name.
// Processes of other versions and word sizes may have the file mapped too: fixed widths only, and a new
// kLayoutVersion whenever anything here changes its place or meaning.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace winport {

enum class ObjectKind : uint32_t {
    Event = 1,
    Mutex = 2,
    Section = 3,
    File = 4,
    Token = 5,
    Process = 6,
    Thread = 7
};

inline constexpr uint32_t kPageMagic = 0x544A424F;  // "OBJT"
inline constexpr uint32_t kLayoutVersion = 2;
inline constexpr size_t kPageSize = 4096;
inline constexpr size_t kMaxNameUnits = 260;

// Event: the truth is in `word`, a wake only a hint to look again. A set leaves nothing but the signal and
// the count: who sleeps has said so since the last one.
inline constexpr uint32_t kEventSignaled = 1;
inline constexpr uint32_t kEventSleepers = 2;  // somebody sleeps on the word: a set must wake
inline constexpr uint32_t kEventSetCount = 4;  // manual-reset only: the bits from here up count the sets
inline constexpr uint32_t kEventBell = 4;      // auto-reset only: the bits from here up are a bell's number
inline constexpr uint32_t kNoBells = 0xFFFFFFFE;  // as tag: those who use the event have not the same bells

// Mutex: `word` names the owner.
inline constexpr uint32_t kMutexOwner = 0x3FFFFFFF;  // owner's token, 0 when free
inline constexpr uint32_t kLastToken = kMutexOwner - 1;
inline constexpr uint32_t kHeirToCome = kMutexOwner;     // as heir: a sleeper has been woken to become it
inline constexpr uint32_t kMutexAbandoned = 0x40000000;  // free, and its last owner died with it
inline constexpr uint32_t kMutexSleeper = 0x80000000;    // somebody sleeps on the word

struct ObjectPage {
    uint32_t magic;
    uint32_t layoutVersion;
    ObjectKind kind;
    uint32_t manualReset;  // events
    uint64_t dataSize;     // sections: bytes behind this page
    uint32_t nameLength;   // UTF-16 units
    uint32_t reserved;

    // What changes while the object lives has a cache line of its own.
    alignas(64) std::atomic<uint32_t> word;

    // Event: one more than the number of the processor on which it was set last; 0: never set. Whoever waits
    // on that same processor knows that the setter cannot run while it polls.
    std::atomic<uint32_t> setterProcessor;

    // Mutex: turns. The heir is the one waiter that looks often; the others sleep on `queue` until it has
    // become the owner. An owner may take the mutex again and again for one turn while others wait.
    std::atomic<uint32_t> heir;       // token, 0: nobody waits
    std::atomic<uint32_t> lastOwner;  // token
    std::atomic<uint32_t> turnStart;  // microseconds of the monotonic clock, wraps
    std::atomic<uint32_t> turnTakes;  // how often the last owner has taken it in this turn
    std::atomic<uint32_t> recursion;  // levels, written by the owner alone

    std::atomic<uint32_t> bellTag;  // event: of the home page where its bells are; 0: not known yet
    alignas(64) std::atomic<uint32_t> queue;
    std::atomic<uint32_t> queueSleepers;  // a hint: the killed are still counted

    alignas(64) char16_t name[kMaxNameUnits];
};

// What an event or a mutex without a name needs of it.
inline constexpr size_t kUnnamedStateSize = offsetof(ObjectPage, name);

static_assert(std::atomic<uint32_t>::is_always_lock_free);
static_assert(offsetof(ObjectPage, word) == 64 && offsetof(ObjectPage, queue) == 128);
static_assert(offsetof(ObjectPage, name) == 192 && sizeof(ObjectPage) <= kPageSize);

}  // namespace winport
