// An actor's process: the calls of the system that the channel makes, each a point where the scheduler may
// come in, and what a client and a server do. The linker puts the functions of this file before the system's
// (--wrap), for this program alone.
#include <sys/prctl.h>
#include <unistd.h>
#include <windows.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <string_view>

#include "control.h"
#include "ipc/late_reply.h"
#include "ipc/opl_channel.h"
#include "kwt/step.h"

namespace schedules {

namespace {

constexpr uint32_t kNoObject = ~0u;
constexpr const WCHAR* kChannel = TEXT("Schedules");
constexpr uint32_t kCapacity = 64;
constexpr std::array<std::u16string_view, kObjects> kNames = {u"CmdNotifyEvent",   u"CmdCancelEvent",
                                                              u"RespNotifyEvent",  u"RespCancelEvent",
                                                              u"TransactionMutex", u"ServerIdleEvent"};

Control* control;
uint32_t self;
std::map<HANDLE, uint32_t> numbers;  // of the objects of the channel, by this process's handles
std::array<const uint8_t*, 2> views;

// FNV-1a, a word at a time.
uint64_t Mixed(uint64_t hash, uint64_t value) {
    hash = (hash ^ value) * 0x9E3779B97F4A7C15;
    return hash ^ (hash >> 29);
}

// What this process has learnt: the rest of its way depends on nothing else.
void Learn(uint64_t what) {
    control->histories[self] = Mixed(control->histories[self], what + 1);
}

// The ids differ from run to run.
uint64_t ActorOf(uint32_t processId) {
    for (uint32_t actor = 0; actor < kActors; ++actor)
        if (processId != 0 && control->processIds[actor] == processId) return actor + 1;
    return processId == 0 ? 0 : kActors + 1;
}

uint64_t BlockState(size_t section) {
    const Block& words = control->blocks[section];
    uint64_t hash = Mixed(0, ActorOf(words[0]));
    for (size_t i = 1; i < words.size(); ++i)
        hash = Mixed(hash, words[i]);
    return hash;
}

uint64_t State() {
    const Control& c = *control;
    uint64_t hash = Mixed(self, c.now);
    for (uint32_t actor = 0; actor < kActors; ++actor) {
        const Waiting& waiting = c.waitings[actor];
        hash = Mixed(hash, c.histories[actor]);
        hash = Mixed(hash, static_cast<uint64_t>(c.fates[actor]) << 1 | (waiting.waits ? 1 : 0));
        if (waiting.waits)
            hash = Mixed(Mixed(Mixed(hash, waiting.objects), waiting.pulsed), waiting.deadline);
    }
    for (const Object& object : c.objects)
        hash = Mixed(hash, object.openers << 8 | (object.owner & 0x7F) << 1 | (object.isSet ? 1 : 0));
    for (size_t section = 0; section < 2; ++section)
        hash = Mixed(hash, BlockState(section));
    for (const int spent : c.schedule.spent)
        hash = Mixed(hash, static_cast<uint64_t>(spent));
    return hash | 1;
}

// False when it was there already.
bool NoteState(uint64_t state) {
    for (uint64_t place = state >> 8;; ++place) {
        std::atomic<uint64_t>& entry = control->visited[place & control->visitedMask];
        uint64_t found = entry.load(std::memory_order_relaxed);
        if (found == 0 && entry.compare_exchange_strong(found, state)) break;
        if (found == state) return false;
    }
    control->states->fetch_add(1, std::memory_order_relaxed);
    return true;
}

[[noreturn]] void End(Verdict verdict) {
    control->verdict = verdict;
    Wake(*control, kScheduler);
    for (;;)
        ::pause();
}

void GiveTurnTo(uint32_t actor) {
    if (actor == self) return;
    control->running = actor;
    Wake(*control, actor);
    if (!WaitForGo(*control, self)) End(Verdict::Stuck);
    control->lastState = 0;
}

void Carry(const Decision& decision) {
    Control& c = *control;
    ++c.nextDecision;
    c.lastState = 0;
    switch (decision.kind) {
        case Kind::Switch:
            return GiveTurnTo(decision.actor);
        case Kind::Kill:
            c.verdict = Verdict::KillAsked;
            c.running = self;
            Wake(c, kScheduler);
            if (!WaitForGo(c, self)) End(Verdict::Stuck);
            return;
        case Kind::Timeout:
            // A line of another build may name one that has no time-out.
            if (c.waitings[decision.actor].deadline == kNever) return;
            c.now = std::max(c.now, c.waitings[decision.actor].deadline);
            GiveTurnTo(decision.actor);
    }
}

void NoteOptions(bool isBlocked) {
    Control& c = *control;
    const auto note = [&](Kind kind, uint32_t actor) {
        if (c.optionCount == kMaxPoints) End(Verdict::Endless);
        c.options[c.optionCount++] = {{c.point, kind, static_cast<uint8_t>(actor)}, isBlocked};
    };
    for (uint32_t actor = 0; actor < kActors; ++actor) {
        if (c.fates[actor] != Fate::Running) continue;
        const Waiting& waiting = c.waitings[actor];
        const bool canRun = CanRun(c, actor);
        if (canRun && actor != self) note(Kind::Switch, actor);
        if (waiting.waits || actor == self) note(Kind::Kill, actor);
        if (!canRun && waiting.deadline != kNever) note(Kind::Timeout, actor);
    }
}

void CopyBlocks() {
    for (size_t section = 0; section < views.size(); ++section)
        if (views[section] != nullptr) std::memcpy(&control->blocks[section], views[section], sizeof(Block));
}

// A place where the scheduler may decide. Nothing that others see happens between two of them.
void Come(const char* place, bool isBlocked = false) {
    Control& c = *control;
    CopyBlocks();
    c.places[self] = place;
    const uint32_t number = ++c.point;
    if (number > kMaxPoints) End(Verdict::Endless);
    const bool decides =
        c.nextDecision < c.schedule.count && c.schedule.decisions[c.nextDecision].point == number;
    if (c.prints)
        std::printf("%5u %6llu ms  %-7s%s%s\n", number, static_cast<unsigned long long>(c.now),
                    kActorNames[self], place, isBlocked ? ", waits" : "");
    if (c.prints) static_cast<void>(std::fflush(stdout));
    if (decides) return Carry(c.schedule.decisions[c.nextDecision]);
    if (c.nextDecision < c.schedule.count || c.isFreshPhase || c.opensFirst) return;
    if (c.mergesSections && std::string_view(place).substr(0, 4) != "call") return;
    const uint64_t state = State();
    if (state == c.lastState) return;
    c.lastState = state;
    if (c.checksVisited && !NoteState(state)) End(Verdict::Pruned);
    NoteOptions(isBlocked);
}

// Waits until one of the objects is to be had or the time is over; false then.
bool Await(const char* place, uint32_t objects, uint32_t milliseconds) {
    Control& c = *control;
    Waiting& waiting = c.waitings[self];
    waiting = {objects, 0, milliseconds == INFINITE ? kNever : c.now + milliseconds, true};
    for (;;) {
        const bool isThere = AnyIsAvailable(c, waiting);
        if (isThere || waiting.deadline <= c.now) {
            waiting.waits = false;
            waiting.deadline = kNever;
            return isThere;
        }
        const uint32_t before = c.nextDecision;
        Come(place, true);
        if (c.nextDecision != before) continue;
        const uint32_t next = NextInTurn(c, self);
        if (next == kNobody) End(Verdict::Stuck);
        GiveTurnTo(next);
    }
}

void NoteHandle(HANDLE handle, LPCWSTR name, bool isMutex, bool isManual) {
    if (handle == nullptr) return;
    numbers.erase(handle);
    if (name == nullptr) return;
    const std::u16string_view whole = name;
    for (uint32_t number = 0; number < kObjects; ++number) {
        if (!whole.ends_with(kNames[number])) continue;
        numbers[handle] = number;
        Object& object = control->objects[number];
        if (object.openers == 0) object = {.isMutex = isMutex, .isManual = isManual};
        object.openers |= 1u << self;
    }
}

uint32_t NumberOf(HANDLE handle) {
    const auto found = numbers.find(handle);
    return found == numbers.end() ? kNoObject : found->second;
}

// A call about one of the channel's objects is a place; that of another object, null, is none of ours.
Object* ComeTo(HANDLE handle, const char* call) {
    const uint32_t number = NumberOf(handle);
    if (number == kNoObject) return nullptr;
    Come(call);
    Learn(number);
    return &control->objects[number];
}

void Check(bool holds, const char* what, uint32_t number) {
    if (holds) return;
    static_cast<void>(std::snprintf(control->mismatch, sizeof(control->mismatch),
                                    "%s, object %u, process of %s", what, number, kActorNames[self]));
    End(Verdict::Mismatch);
}

}  // namespace

}  // namespace schedules

using namespace schedules;

void kwt::Step(const char* place) {
    Come(place);
    CopyBlocks();  // which others may have changed meanwhile: a section's lock is of its process alone
    // What it reads next, and who lives, is what it goes on by.
    const std::string_view name = place;
    const bool isServer = self == kServer || self == kNewServer;
    if (name == "read: section locked") Learn(BlockState(isServer ? 0 : 1));
    if (name != "write: section locked") return;
    Learn(BlockState(isServer ? 1 : 0));
    for (const Fate fate : control->fates)
        Learn(fate == Fate::Killed ? 1 : 0);
}

extern "C" {

decltype(CreateEventW) __real_CreateEventW;
decltype(CreateMutexW) __real_CreateMutexW;
decltype(CreateFileMappingW) __real_CreateFileMappingW;
decltype(MapViewOfFile) __real_MapViewOfFile;
decltype(UnmapViewOfFile) __real_UnmapViewOfFile;
decltype(CloseHandle) __real_CloseHandle;
decltype(SetEvent) __real_SetEvent;
decltype(ResetEvent) __real_ResetEvent;
decltype(ReleaseMutex) __real_ReleaseMutex;
decltype(WaitForSingleObject) __real_WaitForSingleObject;
decltype(WaitForMultipleObjects) __real_WaitForMultipleObjects;

HANDLE __wrap_CreateEventW(LPSECURITY_ATTRIBUTES security, BOOL manualReset, BOOL initialState,
                           LPCWSTR name) {
    if (name != nullptr) Come("call: create an event");
    const HANDLE handle = __real_CreateEventW(security, manualReset, initialState, name);
    NoteHandle(handle, name, false, manualReset != FALSE);
    return handle;
}

HANDLE __wrap_CreateMutexW(LPSECURITY_ATTRIBUTES security, BOOL initialOwner, LPCWSTR name) {
    if (name != nullptr) Come("call: create a mutex");
    const HANDLE handle = __real_CreateMutexW(security, initialOwner, name);
    NoteHandle(handle, name, true, false);
    return handle;
}

HANDLE __wrap_CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protection, DWORD high,
                                 DWORD low, LPCWSTR name) {
    Come("call: create a section");
    const HANDLE handle = __real_CreateFileMappingW(file, security, protection, high, low, name);
    Learn(GetLastError());
    return handle;
}

LPVOID __wrap_MapViewOfFile(HANDLE mapping, DWORD access, DWORD high, DWORD low, SIZE_T size) {
    void* const view = __real_MapViewOfFile(mapping, access, high, low, size);
    views[views[0] == nullptr ? 0 : 1] = static_cast<const uint8_t*>(view);
    return view;
}

BOOL __wrap_UnmapViewOfFile(LPCVOID view) {
    for (const uint8_t*& known : views)
        if (known == view) known = nullptr;
    return __real_UnmapViewOfFile(view);
}

BOOL __wrap_CloseHandle(HANDLE handle) {
    if (Object* const object = ComeTo(handle, "call: close")) object->openers &= ~(1u << self);
    numbers.erase(handle);
    return __real_CloseHandle(handle);
}

BOOL __wrap_SetEvent(HANDLE event) {
    if (Object* const object = ComeTo(event, "call: set")) {
        object->isSet = true;
        for (Waiting& waiting : control->waitings)
            if (object->isManual && waiting.waits) waiting.pulsed |= waiting.objects & 1u << NumberOf(event);
    }
    return __real_SetEvent(event);
}

BOOL __wrap_ResetEvent(HANDLE event) {
    if (Object* const object = ComeTo(event, "call: reset")) object->isSet = false;
    return __real_ResetEvent(event);
}

BOOL __wrap_ReleaseMutex(HANDLE mutex) {
    Object* const object = ComeTo(mutex, "call: release");
    if (object != nullptr && object->owner == self) object->owner = kNobody;
    return __real_ReleaseMutex(mutex);
}

DWORD __wrap_WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL, DWORD milliseconds) {
    uint32_t wanted = 0;
    for (DWORD i = 0; i < count; ++i)
        if (const uint32_t number = NumberOf(handles[i]); number != kNoObject) wanted |= 1u << number;
    if (wanted == 0) return __real_WaitForMultipleObjects(count, handles, FALSE, 0);
    Come("call: wait");
    const bool isThere = Await("call: wait", wanted, milliseconds);
    for (DWORD i = 0; isThere && i < count; ++i) {
        const uint32_t number = NumberOf(handles[i]);
        Object& object = control->objects[number];
        if (!IsAvailable(*control, number, control->waitings[self])) continue;
        const DWORD real = __real_WaitForSingleObject(handles[i], 0);
        const bool isLevel = object.isMutex || object.isSet;
        Check((real != WAIT_TIMEOUT) == isLevel, "not to be had, though it should be", number);
        if (object.isMutex) object.owner = self;
        if (!object.isMutex && !object.isManual) object.isSet = false;
        Learn(number << 8 | (real == WAIT_ABANDONED ? 1 : 0));
        return real == WAIT_ABANDONED ? WAIT_ABANDONED_0 + i : WAIT_OBJECT_0 + i;
    }
    for (DWORD i = 0; i < count; ++i)
        Check(__real_WaitForSingleObject(handles[i], 0) == WAIT_TIMEOUT, "to be had, though it should not be",
              NumberOf(handles[i]));
    Learn(0xFF00);
    return WAIT_TIMEOUT;
}

DWORD __wrap_WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    if (NumberOf(handle) == kNoObject) return __real_WaitForSingleObject(handle, milliseconds);
    return __wrap_WaitForMultipleObjects(1, &handle, FALSE, milliseconds);
}

void __wrap_Sleep(DWORD milliseconds) {
    Come("call: sleep");
    Learn(milliseconds);
    static_cast<void>(Await("call: sleep", 0, milliseconds));
}

DWORD __wrap_GetTickCount() {
    Learn(control->now);
    return static_cast<DWORD>(control->now);
}

}  // extern "C"

namespace schedules {

namespace {

// The text of an exchange names its client and its number.
std::array<char, 2> TextOf(uint32_t actor, uint32_t number) {
    return {static_cast<char>('a' + actor), static_cast<char>('0' + number)};
}

void WaitForOthersToOpen() {
    if (!control->opensFirst) return;
    control->verdict = Verdict::Opened;
    Wake(*control, kScheduler);
    if (!WaitForGo(*control, self)) ::_exit(4);
}

void Exchanges(ipc::OPLChannel& channel, uint32_t count) {
    for (uint32_t number = 0; number < count; ++number) {
        Exchange& exchange = control->exchanges[self][number];
        exchange = {control->point, 0, 0, 0, 0, -1};
        const auto text = TextOf(self, number);
        std::array<char, kCapacity> reply{};
        uint32_t bytes = channel.Send(text.data(), text.size(), kTimeoutMs);
        exchange.error = GetLastError();
        if (bytes != 0) {
            bytes = channel.Receive(reply.data(), reply.size(), kTimeoutMs);
            exchange.error = GetLastError();
            const bool isOwn =
                bytes == text.size() && reply[0] == text[0] && reply[1] >= '0' && reply[1] < '9';
            if (bytes != 0) exchange.got = isOwn ? reply[1] - '0' : -2;
            if (bytes == 0 && exchange.error == NO_ERROR) exchange.got = -3;
        }
        exchange.endedAt = control->point;
        Learn(exchange.error << 8 | static_cast<uint32_t>(exchange.got + 4));
        if (self == kFresh && exchange.got == static_cast<int32_t>(number)) return;
    }
}

void Client() {
    ipc::OPLChannel channel;
    if (!channel.Open(ipc::ChannelRole::Client, kChannel, kCapacity)) ::_exit(3);
    WaitForOthersToOpen();
    Exchanges(channel, self == kFresh ? kFreshAttempts : kExchanges);
    channel.Close();
}

void Server() {
    ipc::OPLChannel channel;
    if (!channel.Open(ipc::ChannelRole::Server, kChannel, kCapacity)) ::_exit(3);
    WaitForOthersToOpen();
    std::array<char, kCapacity> request;
    for (;;) {
        const uint32_t bytes = channel.Receive(request.data(), request.size(), INFINITE);
        if (bytes != 2) continue;
        const auto client = static_cast<uint32_t>(request[0] - 'a');
        const auto number = static_cast<uint32_t>(request[1] - '0');
        Exchange* const exchange =
            client < kActors && number < kFreshAttempts ? &control->exchanges[client][number] : nullptr;
        if (exchange != nullptr) exchange->servedAt = control->point;
        const auto send = [&] { return channel.Send(request.data(), bytes, kTimeoutMs) != 0; };
        const ipc::ReplySent sent = ipc::SendPastLateReply(channel, send, Sleep);
        if (exchange != nullptr && sent != ipc::ReplySent::Never) exchange->answeredAt = control->point;
    }
}

}  // namespace

void RunActor(Control& shared, uint32_t actor) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    control = &shared;
    self = actor;
    if (!WaitForGo(shared, self)) ::_exit(4);
    if (actor == kServer || actor == kNewServer)
        Server();
    else
        Client();
    control->lastState = 0;
    NoteEnd(shared, self, Fate::Finished);
    if (IsOver(shared)) End(Verdict::Over);
    const uint32_t next = NextInTurn(shared, self);
    if (next == kNobody) End(Verdict::Stuck);
    shared.running = next;
    Wake(shared, next);
    for (;;)
        ::pause();
}

}  // namespace schedules
