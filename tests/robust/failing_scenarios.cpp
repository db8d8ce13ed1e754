// What programs do with the library and the layer below, each with its nth call failing, for every n: a
// crash, a hang, a leak, a failure without a reason or an aftermath is a fault.
//
//   failing_scenarios SEED SAMPLES       SAMPLES: calls that fail of each scenario and kind; 0: all
//
// In a home where the desk is installed and printer P answers.
#include <kestrel/sdk.h>
#include <sys/wait.h>
#include <unistd.h>
#include <windows.h>
// The spooler's header needs the one above.
#include <objbase.h>
#include <psapi.h>
#include <rpc.h>
#include <userenv.h>
#include <winspool.h>
#include <wtsapi32.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <random>
#include <vector>

#include "failing_calls.h"
#include "ipc/opl_channel.h"

namespace {

using failing::Kind;

constexpr const WCHAR* kName = TEXT("Global\\Failing");
constexpr uint32_t kMs = 1000;

bool Is(LSTATUS status) {
    SetLastError(static_cast<DWORD>(status));
    return status == ERROR_SUCCESS;
}
bool Closed(HANDLE handle) {
    return handle != nullptr && CloseHandle(handle);
}
template <typename Use>
bool WithKey(Use use) {
    HKEY key = nullptr;
    if (!Is(RegCreateKeyW(HKEY_CURRENT_USER, TEXT("Software\\Failing"), &key))) return false;
    const bool done = use(key);
    const DWORD error = GetLastError();
    RegCloseKey(key);
    SetLastError(error);
    return done;
}
bool SetNumber(HKEY key) {
    const DWORD number = 7;
    return Is(RegSetValueExW(key, TEXT("n"), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), 4));
}
template <typename Use>
bool WithPrinter(Use use) {
    PRINTER_DEFAULTSW defaults{nullptr, nullptr, PRINTER_ALL_ACCESS};
    HANDLE printer = nullptr;
    WideText name = TEXT("P");
    if (!OpenPrinterW(name.data(), &printer, &defaults)) return false;
    const bool done = use(printer);
    const DWORD error = GetLastError();
    ClosePrinter(printer);
    SetLastError(error);
    return done;
}
bool PrinterAddedAndDeleted() {
    WideText name = TEXT("Q"), port = TEXT("USB9"), driver = TEXT("ZR One"), processor = TEXT("WinPrint");
    PRINTER_INFO_2W info{};
    info.pPrinterName = name.data();
    info.pPortName = port.data();
    info.pDriverName = driver.data();
    info.pPrintProcessor = processor.data();
    HANDLE printer = AddPrinterW(nullptr, 2, reinterpret_cast<LPBYTE>(&info));
    if (printer == nullptr && GetLastError() == ERROR_PRINTER_ALREADY_EXISTS) {
        PRINTER_DEFAULTSW defaults{nullptr, nullptr, PRINTER_ALL_ACCESS};
        if (!OpenPrinterW(name.data(), &printer, &defaults)) return false;
    }
    if (printer == nullptr) return false;
    const bool done = DeletePrinter(printer);
    const DWORD error = GetLastError();
    ClosePrinter(printer);
    SetLastError(error);
    return done;
}
bool MutexTaken(const WCHAR* name) {
    HANDLE mutex = CreateMutexW(nullptr, FALSE, name);
    if (mutex == nullptr) return false;
    const bool taken = WaitForSingleObject(mutex, 0) == WAIT_OBJECT_0;
    const DWORD error = GetLastError();
    if (taken) ReleaseMutex(mutex);
    CloseHandle(mutex);
    SetLastError(error);
    return taken;
}
bool SectionSeen(const WCHAR* name) {
    HANDLE section = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 70000, name);
    if (section == nullptr) return false;
    void* view = MapViewOfFile(section, FILE_MAP_ALL_ACCESS, 0, 0, 0);
    const DWORD error = GetLastError();
    if (view != nullptr) {
        static_cast<volatile char*>(view)[69999] = 1;
        UnmapViewOfFile(view);
    }
    CloseHandle(section);
    SetLastError(error);
    return view != nullptr;
}
bool ChannelOpened(kwt::ChannelRole role) {
    auto channel = std::make_unique<OPLChannel>();
    const bool opened = channel->Open(role, TEXT("FailingChannel"));
    const DWORD error = GetLastError();
    channel.reset();
    SetLastError(error);
    return opened;
}
template <typename Use>
bool Selected(Use use) {
    return SelectPrinter(TEXT("P")) && use() != 0;
}
// One call of a function that reads or writes an array.
template <auto kExport, typename Element, size_t kCount>
bool Transfers() {
    static Element elements[kCount];
    return Selected([] { return kExport(elements, kMs); });
}
bool ProgramRun() {
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    WideText line = TEXT("/bin/true");
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process))
        return false;
    const bool ended = WaitForSingleObject(process.hProcess, 5000) == WAIT_OBJECT_0;
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    return ended;
}
bool ProfileRead() {
    WideText folder(600, WCHAR{0});
    DWORD bytes = 0;
    if (!GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<LPBYTE>(folder.data()), 1200,
                                    &bytes))
        return false;
    const WideText path = folder.c_str() + WideText(TEXT("\\3\\ZRIJ9900.INI"));
    WCHAR text[300];
    return GetPrivateProfileSectionW(TEXT("Printers"), text, 300, path.c_str()) > 0 &&
           GetPrivateProfileStringW(TEXT("SDK"), TEXT("Signature"), TEXT(""), text, 300, path.c_str()) == 4;
}

struct Scenario {
    const char* name;
    bool (*run)();
    bool mayFailQuietly = false;  // its failure has no last-error value, or is no failure
    bool isExport = false;
};

const Scenario kScenarios[] = {
    {"unnamed event", [] { return Closed(CreateEventW(nullptr, TRUE, TRUE, nullptr)); }},
    {"named event", [] { return Closed(CreateEventW(nullptr, TRUE, TRUE, kName)); }},
    {"unnamed mutex", [] { return MutexTaken(nullptr); }},
    {"named mutex", [] { return MutexTaken(kName); }},
    {"unnamed section", [] { return SectionSeen(nullptr); }},
    {"named section", [] { return SectionSeen(kName); }},
    {"client channel", [] { return ChannelOpened(kwt::ChannelRole::Client); }},
    {"server channel", [] { return ChannelOpened(kwt::ChannelRole::Server); }},
    {"registry key", [] { return WithKey([](HKEY) { return true; }); }},
    {"registry value set", [] { return WithKey(SetNumber); }},
    {"registry value read",
     [] {
         return WithKey([](HKEY key) {
             DWORD number = 0;
             DWORD size = 4;
             return SetNumber(key) && Is(RegQueryValueExW(key, TEXT("n"), nullptr, nullptr,
                                                          reinterpret_cast<LPBYTE>(&number), &size));
         });
     }},
    {"registry value deleted",
     [] { return WithKey([](HKEY key) { return SetNumber(key) && Is(RegDeleteValueW(key, TEXT("n"))); }); }},
    {"registry enumeration",
     [] {
         WCHAR name[100];
         DWORD size = 100;
         return Is(RegEnumKeyExW(HKEY_LOCAL_MACHINE, 0, name, &size, nullptr, nullptr, nullptr, nullptr));
     }},
    {"registry tree deleted",
     [] {
         return WithKey([](HKEY) { return true; }) &&
                Is(RegDeleteTreeW(HKEY_CURRENT_USER, TEXT("Software\\Failing")));
     }},
    {"printer opened", [] { return WithPrinter([](HANDLE) { return true; }); }},
    {"printer read",
     [] {
         return WithPrinter([](HANDLE printer) {
             BYTE block[4096];
             DWORD size = 0;
             return GetPrinterW(printer, 2, block, sizeof(block), &size) != FALSE;
         });
     }},
    {"printer changed",
     [] {
         return WithPrinter([](HANDLE printer) {
             alignas(8) BYTE block[4096];
             DWORD size = 0;
             return GetPrinterW(printer, 2, block, sizeof(block), &size) && SetPrinterW(printer, 2, block, 0);
         });
     }},
    {"printer data",
     [] {
         return WithPrinter([](HANDLE printer) {
             DWORD number = 1;
             WideText name = TEXT("n");
             return Is(static_cast<LSTATUS>(
                 SetPrinterDataW(printer, name.data(), REG_DWORD, reinterpret_cast<LPBYTE>(&number), 4)));
         });
     }},
    {"printer list",
     [] {
         BYTE block[8192];
         DWORD size = 0;
         DWORD count = 0;
         return EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, block, sizeof(block), &size, &count) != FALSE;
     }},
    {"printer added", PrinterAddedAndDeleted},
    {"driver list",
     [] {
         BYTE block[8192];
         DWORD size = 0;
         DWORD count = 0;
         return EnumPrinterDriversW(nullptr, nullptr, 1, block, sizeof(block), &size, &count) != FALSE;
     }},
    {"port list",
     [] {
         BYTE block[8192];
         DWORD size = 0;
         DWORD count = 0;
         return EnumPortsW(nullptr, 1, block, sizeof(block), &size, &count) != FALSE;
     }},
    {"initialisation file", ProfileRead, true},
    {"library loaded",
     [] {
         const HMODULE library = LoadLibraryW(TEXT("ZRIJ9900SDK.dll"));
         return library != nullptr && FreeLibrary(library);
     }},
    {"program run", ProgramRun, true},
    {"process list",
     [] {
         DWORD ids[4096];
         DWORD bytes = 0;
         return EnumProcesses(ids, sizeof(ids), &bytes) != FALSE;
     }},
    {"message queue",
     [] {
         MSG message;
         PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
         return PostThreadMessageW(GetCurrentThreadId(), 1024, 0, 0) != FALSE;
     }},
    {"thread slot",
     [] {
         const DWORD slot = TlsAlloc();
         return slot != TLS_OUT_OF_INDEXES && TlsFree(slot);
     }},
    {"text to bytes",
     [] {
         char text[8];
         return WideCharToMultiByte(CP_ACP, 0, TEXT("abc"), 3, text, 8, nullptr, nullptr) == 3;
     }},
    {"file attributes", [] { return GetFileAttributesW(TEXT("/etc/passwd")) != INVALID_FILE_ATTRIBUTES; }},
    {"selection", [] { return Selected([] { return 1; }); }, false, true},
    {"raw exchange", [] { return Selected([] { return SendCmd("ZRPing?", 7, nullptr, 0, nullptr, kMs); }); },
     false, true},
    {"number", Transfers<GetFaxRedials, uint8_t, 1>, false, true},
    {"word", Transfers<GetDisplayLanguage, uint32_t, 1>, false, true},
    {"text", Transfers<GetFriendlyName, kestrel_char, 64>, false, true},
    {"address", Transfers<GetStaticIPAddress, uint8_t, 4>, false, true},
    {"set number", [] { return Selected([] { return SetFaxRedials(5, kMs); }); }, false, true},
    {"set text", [] { return Selected([] { return SetFriendlyName(TEXT("Office"), kMs); }); }, false, true},
    {"one-touch record",
     [] {
         return Selected([] {
             KestrelQuickDial v;
             return GetQuickDialButton(0, &v, kMs);
         });
     },
     false, true},
    {"speed-dial list written", Transfers<SetQuickDialNumbers, KestrelQuickDial, 60>, false, true},
    {"access points", Transfers<GetAccessPoints, KestrelAccessPoint, 64>, false, true},
    {"hosts", Transfers<GetMDNSHostList, KestrelHost, 64>, false, true},
    {"device time",
     [] {
         return Selected([] {
             uint32_t v[5];
             return GetDeviceTime(v, v + 1, v + 2, v + 3, v + 4, kMs);
         });
     },
     false, true},
    {"clock set", [] { return Selected([] { return SetCurrentTimeRTC(kMs); }); }, false, true},
    {"firmware version",
     [] {
         return Selected([] {
             uint32_t v[2];
             kestrel_char t[64];
             return GetFWVersion(v, v + 1, t, kMs);
         });
     },
     false, true},
    {"capabilities",
     [] {
         return Selected([] {
             uint8_t v[48];
             return GetCapabilities(v, 48, kMs);
         });
     },
     true, true},
    {"lock", [] { return Selected([] { return Lock(kMs) && Unlock(kMs); }); }, true, true},
    {"cancel", [] { return Selected([] { return Cancel(); }); }, false, true},
    {"maintenance", [] { return Selected([] { return PrintTestPage(); }); }, true, true},
    {"upgrade", [] { return Selected([] { return RefreshFWCapabilities(kMs); }); }, true, true},
    {"display mode", [] { return SetStatusMonitorDisplayMode(1) != 0; }, true, true},
};

long OpenDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
}

enum Verdict { kNotReached = 0, kSurvived = 1, kNoReason = 2, kNoAftermath = 3, kLeak = 4 };

// The classes behind the exports report a lack of memory by an exception; so does what a scenario needs.
bool Run(const Scenario& scenario) {
    try {
        return scenario.run();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return false;
    }
}

// In a process of its own, which knows nothing yet.
int Try(const Scenario& scenario, Kind kind, long nth, bool forever, int error, long mostDescriptors) {
    alarm(30);
    // The first look at the product configuration decides for the whole process, a failure too.
    if (scenario.isExport) SelectPrinter(TEXT("none"));
    failing::Arm(kind, nth, forever, error);
    SetLastError(0);
    const bool done = Run(scenario);
    const DWORD reason = GetLastError();
    const bool reached = failing::Disarm() >= nth;
    if (!done && reason == 0 && !scenario.mayFailQuietly) return kNoReason;
    // What a failed exchange left in the channel may cost one more.
    if (!Run(scenario) && !Run(scenario)) return kNoAftermath;
    if (OpenDescriptors() > mostDescriptors) return kLeak;
    return reached ? kSurvived : kNotReached;
}

template <typename Body>
int InChild(Body body) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) _exit(body());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

struct Totals {
    long tried = 0;
    long faults = 0;
};

constexpr int kErrors[] = {ENOSPC, EMFILE, ENOMEM, EACCES, EINTR, EAGAIN, failing::kShortRead};
constexpr size_t kLastingErrors = 4;  // the first ones; the others pass

void TryCalls(const Scenario& scenario, Kind kind, bool forever, long samples, std::mt19937& random,
              Totals& totals) {
    // How many calls there are, and descriptors afterwards.
    const int descriptors = InChild([&] {
        scenario.run();
        scenario.run();
        return static_cast<int>(OpenDescriptors());
    });
    const int counted = InChild([&] {
        failing::Arm(kind, 1'000'000, false, ENOMEM);
        Run(scenario);
        return static_cast<int>(std::min(failing::Disarm(), 255L));
    });
    for (long i = 0; i < (samples != 0 ? std::min<long>(samples, counted) : counted); ++i) {
        const long nth = samples != 0 && samples < counted ? 1 + random() % counted : i + 1;
        const size_t errors = forever ? kLastingErrors : std::size(kErrors);
        const int error = kind == Kind::Allocation ? ENOMEM : kErrors[random() % errors];
        const int verdict = InChild([&] { return Try(scenario, kind, nth, forever, error, descriptors); });
        ++totals.tried;
        if (verdict == kSurvived || verdict == kNotReached) continue;
        ++totals.faults;
        std::printf("%s, %s call %ld %s with %d: verdict %d\n", scenario.name,
                    kind == Kind::Allocation ? "allocation" : "system", nth,
                    forever ? "and all behind it" : "once", error, verdict);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    std::mt19937 random(static_cast<uint32_t>(std::strtoul(argv[1], nullptr, 10)));
    const long samples = std::atol(argv[2]);
    setvbuf(stdout, nullptr, _IOLBF, 0);
    Totals totals;
    for (const Scenario& scenario : kScenarios) {
        if (argc > 3 && std::string(argv[3]) != scenario.name) continue;
        if (InChild([&] { return scenario.run() ? 1 : 0; }) != 1) {
            std::printf("%s does not even succeed by itself\n", scenario.name);
            ++totals.faults;
            continue;
        }
        for (const Kind kind : {Kind::SystemCall, Kind::Allocation})
            for (const bool forever : {false, true})
                TryCalls(scenario, kind, forever, samples, random, totals);
    }
    std::printf("%zu scenarios, %ld calls that failed, %ld faults\n", std::size(kScenarios), totals.tried,
                totals.faults);
    return totals.faults == 0 ? 0 : 1;
}
