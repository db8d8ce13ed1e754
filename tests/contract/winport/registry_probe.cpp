// A process of its own that uses the registry or kernel objects, for tests that kill it or start it in
// another environment:
//
//   registry_probe create     exits with the result of making a key
//   registry_probe together   the same in several processes that begin at one moment, with the worst result
//   registry_probe count      writes a growing number again and again, printing each after it was written
//   registry_probe orphan     the same in a forked child whose parent, which used the registry, has ended
//   registry_probe drivers    exits with the result of making the drivers' folder
//   registry_probe load       the same of loading Beside.dll
//   registry_probe objects    makes an event and a mutex of its own, prints both error values, and keeps them
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>
#include <windows.h>
// The header below needs the one above.
#include <winspool.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string_view>

#include "forked.h"

namespace {

LSTATUS Create(HKEY& key) {
    return RegCreateKeyW(HKEY_CURRENT_USER, TEXT("Probe"), &key);
}

LSTATUS Write(HKEY key, DWORD number) {
    return RegSetValueExW(key, TEXT("Count"), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                          sizeof number);
}

// Ends when the reader of the output has gone: by the signal, or by the failed flush.
int Count(HKEY key) {
    for (DWORD number = 1;; ++number) {
        if (const LSTATUS status = Write(key, number); status != ERROR_SUCCESS) return status;
        std::printf("%u\n", number);
        if (std::fflush(stdout) != 0) return ERROR_SUCCESS;
    }
}

int CountAsOrphan(HKEY key) {
    if (const LSTATUS status = Write(key, 0); status != ERROR_SUCCESS) return status;
    const pid_t parent = ::getpid();
    if (::fork() != 0) return ERROR_SUCCESS;
    while (::getppid() == parent)
        ::usleep(500);
    return Count(key);
}

// No process may have used the registry before the moment: whoever opens it first makes it.
int CreateTogether() {
    void* page =
        ::mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) return EXIT_FAILURE;
    auto* begin = new (page) std::atomic<int>(0);
    std::array<Forked, 6> children;
    for (Forked& child : children)
        child = Forked([begin] {
            while (begin->load() == 0)
                ::sched_yield();
            HKEY key = nullptr;
            return Create(key);
        });
    ::usleep(2000);
    begin->store(1);
    int worst = 0;
    for (Forked& child : children)
        worst = std::max(worst, child.Wait());
    return worst;
}

DWORD MakeDriversFolder() {
    BYTE path[1024];
    DWORD needed = 0;
    GetPrinterDriverDirectoryW(nullptr, nullptr, 1, path, sizeof path, &needed);
    return GetLastError();
}

int KeepObjects() {
    CreateEventW(nullptr, TRUE, FALSE, TEXT("Global\\Probe"));
    const DWORD event = GetLastError();
    CreateMutexW(nullptr, TRUE, TEXT("Global\\ProbeMutex"));
    std::printf("%u %u\n", event, GetLastError());
    std::fflush(stdout);
    return ::pause();
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view command = argc > 1 ? argv[1] : "create";
    if (command == "together") return CreateTogether();
    if (command == "objects") return KeepObjects();
    if (command == "drivers") return static_cast<int>(MakeDriversFolder());
    if (command == "load") return LoadLibraryW(TEXT("Beside.dll")) != nullptr ? EXIT_SUCCESS : EXIT_FAILURE;
    HKEY key = nullptr;
    const LSTATUS status = Create(key);
    if (status != ERROR_SUCCESS || command == "create") return status;
    return command == "orphan" ? CountAsOrphan(key) : Count(key);
}
