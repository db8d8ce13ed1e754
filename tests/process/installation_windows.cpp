#include <cstring>

#include "installation.h"
#include "installed_printer.h"

namespace {

namespace fs = std::filesystem;

constexpr WCHAR kMonitorKey[] = L"SYSTEM\\CurrentControlSet\\Control\\Print\\Monitors\\Standard TCP/IP Port";
constexpr WCHAR kMonitorFile[] = L"kestrel_test_monitor.dll";

fs::path InFolder(const char* name) {
    return fs::path(std::getenv("KESTREL_TEST_FOLDER")) / name;
}

// Whether the installing program was started with exactly these options.
bool WasAsked(const WideText& options) {
    const WideText line = L"rundll32 printui.dll,PrintUIEntry " + options + L"\n";
    return FileText(InFolder("rundll32.log")).find(std::string(line.begin(), line.end())) !=
           std::string::npos;
}

}  // namespace

Installation::Installation() {
    WCHAR folder[MAX_PATH];
    GetSystemDirectoryW(folder, MAX_PATH);
    fs::remove(fs::path(folder) / kMonitorFile);
    fs::copy_file(PORT_MONITOR, fs::path(folder) / kMonitorFile);
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kMonitorKey, L"Driver", REG_SZ, kMonitorFile, sizeof(kMonitorFile));
}

Installation::~Installation() {
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, kMonitorKey);
    for (const char* name : {"port.bin", "rundll32.log"})
        fs::remove(InFolder(name));
}

bool Installation::HasNetworkPort(const WideText& name, const WideText& host, DWORD number) const {
    constexpr size_t kHostAt = 144;
    constexpr size_t kNumberAt = 952;
    const std::string bytes = FileText(InFolder("port.bin"));
    const auto isAt = [&](size_t at, const void* expected, size_t size) {
        return bytes.size() == 964 && std::memcmp(bytes.data() + at, expected, size) == 0;
    };
    return isAt(0, name.c_str(), (name.size() + 1) * sizeof(WCHAR)) &&
           isAt(kHostAt, host.c_str(), (host.size() + 1) * sizeof(WCHAR)) &&
           isAt(kNumberAt, &number, sizeof(number));
}

bool Installation::HasDriver(const WideText& inf, const WideText& model) const {
    return WasAsked(L"/ia /f \"" + inf + L"\" /m \"" + model + L"\"");
}

bool Installation::HasPrinter(const WideText& name, const WideText& inf, const WideText& model,
                              const WideText& port) const {
    return WasAsked(L"/if /u /f \"" + inf + L"\" /m \"" + model + L"\" /r \"" + port + L"\" /b \"" + name +
                    L"\"");
}

bool Installation::IsDefault(const WideText& printer) const {
    return WasAsked(L"/q /y /n \"" + printer + L"\"");
}
