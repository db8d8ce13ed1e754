// Processes that disturb:
//
//   endurance_helper contend MUTEX SECTION SEED      takes the mutex again and again, at times dies with it
//   endurance_helper scribble CHANNEL SEED           writes anything into the channel's sections in bursts,
//                                                    signals anything
//
// Both until their input ends.
#include <poll.h>
#include <signal.h>
#include <unistd.h>
#include <windows.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "dead_owners.h"
#include "kwt/wide_text.h"

namespace {

WideText Global(const std::string& name) {
    return TEXT("Global\\") + WideText(name.begin(), name.end());
}

bool InputEnded() {
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) > 0;
}

int64_t NowNs() {
    return std::chrono::steady_clock::now().time_since_epoch().count();
}

void* Mapped(const WideText& name, DWORD size) {
    const HANDLE section =
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size, name.c_str());
    return MapViewOfFile(section, FILE_MAP_ALL_ACCESS, 0, 0, 0);
}

int Contend(const WideText& mutexName, const WideText& sectionName, std::mt19937 random) {
    auto* const owners = static_cast<DeadOwners*>(Mapped(sectionName, sizeof(DeadOwners)));
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, mutexName.c_str());
    while (!InputEnded()) {
        const DWORD result = WaitForSingleObject(mutex, 5000);
        if (result == WAIT_ABANDONED) {
            ++owners->abandoned;
            const int64_t took = NowNs() - owners->diedAt;
            if (took > 100'000'000) ++owners->late;
            if (took > owners->longestHeir) owners->longestHeir = took;
        } else if (result != WAIT_OBJECT_0) {
            ++owners->lostTurns;
            continue;
        }
        ++owners->takes;
        if (random() % 8 == 0 && owners->kills < owners->killsWanted) {
            ++owners->kills;
            owners->diedAt = NowNs();
            kill(getpid(), SIGKILL);
        }
        ReleaseMutex(mutex);
    }
    return 0;
}

constexpr DWORD kLongestRestMs = 50;

int Scribble(const WideText& channel, std::mt19937 random) {
    constexpr DWORD kSize = 65791 + 12;
    uint8_t* const sections[] = {static_cast<uint8_t*>(Mapped(channel + TEXT("Cmd"), kSize)),
                                 static_cast<uint8_t*>(Mapped(channel + TEXT("Resp"), kSize))};
    const WCHAR* const suffixes[] = {TEXT("CmdNotifyEvent"), TEXT("CmdCancelEvent"), TEXT("RespNotifyEvent"),
                                     TEXT("RespCancelEvent")};
    while (!InputEnded()) {
        uint8_t* const section = sections[random() % 2];
        // Mostly the header, where a wrong byte is worth most.
        const uint32_t bits = random();
        std::memcpy(section + (random() % 4 != 0 ? random() % 12 : random() % (kSize - 4)), &bits, 4);
        if (random() % 4 == 0) {
            const HANDLE event =
                CreateEventW(nullptr, FALSE, FALSE, (channel + suffixes[random() % 4]).c_str());
            SetEvent(event);
            CloseHandle(event);
        }
        // Whoever is never left in peace fails at its first step, and the others are not tried.
        if (random() % 64 == 0) Sleep(1 + random() % kLongestRestMs);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) return 2;
    std::mt19937 random(static_cast<uint32_t>(std::strtoul(argv[argc - 1], nullptr, 10)));
    return std::string(argv[1]) == "contend" ? Contend(Global(argv[2]), Global(argv[3]), random)
                                             : Scribble(Global(argv[2]), random);
}
