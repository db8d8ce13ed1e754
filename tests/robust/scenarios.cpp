// What programs do: short pieces of the layer below, then of the library.
#include <kestrel/sdk.h>
#include <windows.h>
// The spooler's header needs the one above.
#include <objbase.h>
#include <psapi.h>
#include <rpc.h>
#include <userenv.h>
#include <winspool.h>
#include <wtsapi32.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "contract/handle_support.h"
#include "failing.h"
#include "ipc/opl_channel.h"
#include "kwt/last_error_keeper.h"
#include "query_exports.h"

namespace {

const WideText kName = TEXT("Global\\Failing");
constexpr uint32_t kMs = 1000;

// Room for whatever is read.
alignas(8) BYTE room[65536];
WCHAR text[300];
DWORD size = 0;
DWORD count = 0;

bool Is(LSTATUS status) {
    SetLastError(static_cast<DWORD>(status));
    return status == ERROR_SUCCESS;
}
template <typename Use>
bool WithKey(Use use) {
    HKEY key = nullptr;
    if (!Is(RegCreateKeyW(HKEY_CURRENT_USER, TEXT("Software\\Failing"), &key))) return false;
    const bool done = use(key);
    RegCloseKey(key);
    return done;
}
bool SetNumber(HKEY key) {
    const DWORD number = 7;
    return Is(RegSetValueExW(key, TEXT("n"), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), 4));
}
template <typename Use>
bool WithPrinter(const WCHAR* name, Use use) {
    PRINTER_DEFAULTSW defaults{nullptr, nullptr, PRINTER_ALL_ACCESS};
    HANDLE printer = nullptr;
    if (!OpenPrinterW(WideText(name).data(), &printer, &defaults)) return false;
    const bool done = use(printer);
    ClosePrinter(printer);
    return done;
}
bool PrinterAddedAndDeleted() {
    WideText name = TEXT("Q"), port = TEXT("USB9"), driver = TEXT("ZRIJ9900 Series"),
             processor = TEXT("WinPrint");
    PRINTER_INFO_2W info{};
    info.pPrinterName = name.data();
    info.pPortName = port.data();
    info.pDriverName = driver.data();
    info.pPrintProcessor = processor.data();
    const HANDLE added = AddPrinterW(nullptr, 2, reinterpret_cast<LPBYTE>(&info));
    if (added != nullptr) ClosePrinter(added);
    if (added == nullptr && GetLastError() != ERROR_PRINTER_ALREADY_EXISTS) return false;
    return WithPrinter(TEXT("Q"), [](HANDLE printer) { return DeletePrinter(printer) != FALSE; });
}
bool MutexTaken(const WideText& name) {
    const Handle mutex = Mutex(name);
    return mutex && WaitForSingleObject(mutex, 0) == WAIT_OBJECT_0 && ReleaseMutex(mutex);
}
bool SectionSeen(const WideText& name) {
    const Handle section = Section(70000, name);
    if (!section) return false;
    void* const view = MapViewOfFile(section, FILE_MAP_ALL_ACCESS, 0, 0, 0);
    if (view == nullptr) return false;
    static_cast<volatile char*>(view)[69999] = 1;
    return UnmapViewOfFile(view);
}
bool ChannelOpened(ipc::ChannelRole role) {
    auto channel = std::make_unique<ipc::OPLChannel>();
    const bool opened = channel->Open(role, TEXT("FailingChannel"));
    const kwt::LastErrorKeeper keeper;
    channel.reset();
    return opened;
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
    if (!GetPrinterDriverDirectoryW(nullptr, nullptr, 1, room, sizeof(room), &size)) return false;
    const WideText path = reinterpret_cast<WCHAR*>(room) + WideText(TEXT("\\3\\ZRIJ9900.INI"));
    return GetPrivateProfileSectionW(TEXT("Printers"), text, 300, path.c_str()) > 0 &&
           GetPrivateProfileStringW(TEXT("SDK"), TEXT("Signature"), TEXT(""), text, 300, path.c_str()) > 0;
}
bool PrinterRead(HANDLE printer) {
    return GetPrinterW(printer, 2, room, sizeof(room), &size) != FALSE;
}

const Scenario kScenarios[] = {
    {"unnamed event", [] { return bool(ManualEvent()); }},
    {"named event", [] { return bool(ManualEvent(kName)); }},
    {"unnamed mutex", [] { return MutexTaken({}); }},
    {"named mutex", [] { return MutexTaken(kName); }},
    {"unnamed section", [] { return SectionSeen({}); }},
    {"named section", [] { return SectionSeen(kName); }},
    {"client channel", [] { return ChannelOpened(ipc::ChannelRole::Client); }},
    {"server channel", [] { return ChannelOpened(ipc::ChannelRole::Server); }},
    {"registry value read",
     [] {
         size = sizeof(room);
         return WithKey([](HKEY key) {
             return SetNumber(key) && Is(RegQueryValueExW(key, TEXT("n"), nullptr, nullptr, room, &size));
         });
     }},
    {"registry value deleted",
     [] { return WithKey([](HKEY key) { return SetNumber(key) && Is(RegDeleteValueW(key, TEXT("n"))); }); }},
    {"registry enumeration",
     [] {
         size = 100;
         return Is(RegEnumKeyExW(HKEY_LOCAL_MACHINE, 0, text, &size, nullptr, nullptr, nullptr, nullptr));
     }},
    {"registry tree deleted",
     [] { return WithKey(SetNumber) && Is(RegDeleteTreeW(HKEY_CURRENT_USER, TEXT("Software\\Failing"))); }},
    {"printer read", [] { return WithPrinter(TEXT("P"), PrinterRead); }},
    {"printer changed",
     [] {
         return WithPrinter(TEXT("P"), [](HANDLE printer) {
             return PrinterRead(printer) && SetPrinterW(printer, 2, room, 0);
         });
     }},
    {"printer data",
     [] {
         return WithPrinter(TEXT("P"), [](HANDLE printer) {
             WideText name = TEXT("n");
             return Is(static_cast<LSTATUS>(SetPrinterDataW(printer, name.data(), REG_BINARY, room, 4)));
         });
     }},
    {"printer list",
     [] {
         return EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, room, sizeof(room), &size, &count) != FALSE;
     }},
    {"printer added", PrinterAddedAndDeleted},
    {"driver list",
     [] { return EnumPrinterDriversW(nullptr, nullptr, 1, room, sizeof(room), &size, &count) != FALSE; }},
    {"port list", [] { return EnumPortsW(nullptr, 1, room, sizeof(room), &size, &count) != FALSE; }},
    {"initialisation file", ProfileRead, true},
    {"library loaded",
     [] {
         const HMODULE library = LoadLibraryW(TEXT("ZRIJ9900SDK.dll"));
         return library != nullptr && FreeLibrary(library);
     }},
    {"program run", ProgramRun, true},
    {"process list",
     [] { return EnumProcesses(reinterpret_cast<DWORD*>(room), sizeof(room), &size) != FALSE; }},
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
         return WideCharToMultiByte(CP_ACP, 0, TEXT("abc"), 3, reinterpret_cast<char*>(room), 8, nullptr,
                                    nullptr) == 3;
     }},
    {"file attributes", [] { return GetFileAttributesW(TEXT("/etc/passwd")) != INVALID_FILE_ATTRIBUTES; }},
};

template <typename Use>
bool Selected(Use use) {
    return SelectPrinter(TEXT("P")) && use() != 0;
}

const Scenario kWriting[] = {
    {"set number", [] { return Selected([] { return SetFaxRedials(5, kMs); }); }},
    {"set text", [] { return Selected([] { return SetFriendlyName(TEXT("Office"), kMs); }); }},
    {"speed-dial list written",
     [] {
         static const KestrelQuickDial records[KESTREL_SPEED_DIAL_RECORDS] = {};
         return Selected([] { return SetQuickDialNumbers(records, kMs); });
     }},
    {"clock set", [] { return Selected([] { return SetCurrentTimeRTC(kMs); }); }},
    {"lock", [] { return Selected([] { return Lock(kMs) && Unlock(kMs); }); }, true},
    {"cancel", [] { return Selected([] { return Cancel(); }); }},
    {"maintenance", [] { return Selected([] { return PrintTestPage(); }); }, true},
    {"upgrade", [] { return Selected([] { return RefreshFWCapabilities(kMs); }); }, true},
    {"display mode", [] { return SetStatusMonitorDisplayMode(1) != 0; }, true},
};

// Of the functions that ask the printer, one for each way in which a reply is read.
constexpr std::string_view kAsking[] = {"SendCmd",         "GetFaxRedials",      "GetDisplayLanguage",
                                        "GetFriendlyName", "GetStaticIPAddress", "GetQuickDialButton",
                                        "GetAccessPoints", "GetMDNSHostList",    "GetDeviceTime",
                                        "GetFWVersion",    "GetCapabilities"};

}  // namespace

std::vector<Scenario> Scenarios() {
    std::vector<Scenario> all(std::begin(kScenarios), std::end(kScenarios));
    const auto addExport = [&all](Scenario scenario) {
        scenario.isExport = true;
        all.push_back(std::move(scenario));
    };
    std::ranges::for_each(kWriting, addExport);
    for (const QueryExport& query : QueryExports()) {
        if (std::ranges::find(kAsking, query.name) == std::end(kAsking)) continue;
        addExport({query.name, [query] { return Selected([&] { return query.call(room, kMs); }); },
                   query.name == "GetCapabilities"});
    }
    return all;
}
