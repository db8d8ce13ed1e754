#include "scenarios.h"

#include <kestrel/sdk.h>
#include <windows.h>
// The spooler's header needs the one above.
#include <objbase.h>
#include <psapi.h>
#include <rpc.h>
#include <userenv.h>
#include <winspool.h>
#include <wtsapi32.h>

#include <memory>

#include "ipc/opl_channel.h"

namespace {

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
bool ChannelOpened(ipc::ChannelRole role) {
    auto channel = std::make_unique<ipc::OPLChannel>();
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

const Scenario kScenarios[] = {
    {"unnamed event", [] { return Closed(CreateEventW(nullptr, TRUE, TRUE, nullptr)); }},
    {"named event", [] { return Closed(CreateEventW(nullptr, TRUE, TRUE, kName)); }},
    {"unnamed mutex", [] { return MutexTaken(nullptr); }},
    {"named mutex", [] { return MutexTaken(kName); }},
    {"unnamed section", [] { return SectionSeen(nullptr); }},
    {"named section", [] { return SectionSeen(kName); }},
    {"client channel", [] { return ChannelOpened(ipc::ChannelRole::Client); }},
    {"server channel", [] { return ChannelOpened(ipc::ChannelRole::Server); }},
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

}  // namespace

std::span<const Scenario> Scenarios() {
    return kScenarios;
}
