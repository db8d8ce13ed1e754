// The page that the actors of one schedule and their scheduler share. One actor runs at a time; the others
// wait for their `go`. The real objects decide nothing here about time: each is asked without waiting, and
// what it answers must be what `objects` says.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace schedules {

enum Actor : uint32_t { kClientA, kClientB, kServer, kFresh, kNewServer, kActors, kScheduler = kActors };
inline constexpr std::array<const char*, kActors> kActorNames = {"A", "B", "server", "fresh", "new"};

inline constexpr uint32_t kObjects = 6;  // of a channel that processes wait for
inline constexpr uint32_t kNobody = ~0u;
inline constexpr uint64_t kNever = ~uint64_t{0};
using Block = std::array<uint32_t, 8>;  // of a section: the header, and more than any text here is long
inline constexpr size_t kMaxDecisions = 6;
inline constexpr size_t kMaxPoints = 16'384;
inline constexpr uint32_t kExchanges = 2;  // of each client
inline constexpr uint32_t kFreshAttempts = 6;
inline constexpr uint32_t kTimeoutMs = 250;

enum class Kind : uint8_t { Switch, Kill, Timeout };

// What the scheduler does at one point of a run instead of going on.
struct Decision {
    uint32_t point;
    Kind kind;
    uint8_t actor;
};

// Decisions of each kind, and behind them the choices: switches to another than the next in turn where an
// actor had to wait. All others are forced, away from an actor that could go on.
using Spent = std::array<int, 4>;
inline constexpr size_t kChoices = 3;

struct Schedule {
    uint32_t count;
    std::array<Decision, kMaxDecisions> decisions;
    Spent spent;
};

// What could have been decided.
struct Option {
    Decision decision;
    bool isBlocked;  // the actor that came there
};

enum class Fate : uint32_t { NotStarted, Running, Finished, Killed };
enum class Verdict : uint32_t { None, Opened, Over, Pruned, Stuck, Endless, Mismatch, KillAsked };

struct Object {
    uint32_t openers = 0;      // bit of each actor
    uint32_t owner = kNobody;  // mutexes
    bool isMutex = false, isManual = false, isSet = false;
};

struct Waiting {
    uint32_t objects;  // bit of each; none when it sleeps
    uint32_t pulsed;   // set since the wait began, which counts even when it has been reset
    uint64_t deadline = kNever;
    bool waits;
};

// One exchange of a client as it went.
struct Exchange {
    uint32_t posted, servedAt, answeredAt, endedAt;  // points, 0: never
    uint32_t error;
    int32_t got;  // number of the exchange whose reply came, -1 none, -2 nobody's
};

// Of one schedule.
struct Progress {
    uint32_t point;
    uint32_t running;
    uint64_t now = 1000;  // milliseconds
    Verdict verdict;
    bool prints, checksVisited, isFreshPhase;
    bool opensFirst;      // nothing is decided before all have opened the channel
    bool mergesSections;  // decides only where the system is called, not between the accesses to a section
    std::array<Fate, kActors> fates;
    std::array<uint32_t, kActors> processIds;
    std::array<uint64_t, kActors> histories;
    std::array<Waiting, kActors> waitings;
    std::array<Object, kObjects> objects;
    std::array<Block, 2> blocks;
    std::array<std::array<Exchange, kFreshAttempts>, kActors> exchanges;
    Schedule schedule;
    uint32_t nextDecision;
    uint64_t lastState;
    uint32_t optionCount;
    std::array<Option, kMaxPoints> options;
    std::array<const char*, kActors> places;
    char mismatch[128];
};

struct Control : Progress {
    std::array<std::atomic<uint32_t>, kActors + 1> go;
    uint64_t visitedMask;
    std::atomic<uint64_t>* visited;
    std::atomic<uint64_t>* states;
};

// ---- of both sides ----

// Of an object, to one who waits.
[[nodiscard]] bool IsAvailable(const Control& control, uint32_t object, const Waiting& waiting);
[[nodiscard]] bool AnyIsAvailable(const Control& control, const Waiting& waiting);
[[nodiscard]] bool CanRun(const Control& control, uint32_t actor);
// The next in turn after `from` that can run; when none can, the clock goes on to the first deadline. kNobody
// when nobody ever will.
[[nodiscard]] uint32_t NextInTurn(Control& control, uint32_t from);
[[nodiscard]] bool IsOver(const Control& control);
void Wake(Control& control, uint32_t actor);
// False after a generous time of the real clock.
[[nodiscard]] bool WaitForGo(Control& control, uint32_t actor);
// A dead process's objects, as the system leaves them.
void NoteEnd(Control& control, uint32_t actor, Fate fate);

// The whole life of an actor's process.
[[noreturn]] void RunActor(Control& control, uint32_t actor);

}  // namespace schedules
