#include "installation.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

namespace fs = std::filesystem;

constexpr WCHAR kMonitorKey[] = L"SYSTEM\\CurrentControlSet\\Control\\Print\\Monitors\\Standard TCP/IP Port";
constexpr WCHAR kMonitorFile[] = L"kestrel_test_monitor.dll";

fs::path Folder() {
    return std::getenv("KESTREL_TEST_FOLDER");
}

fs::path InstalledMonitor() {
    WCHAR folder[MAX_PATH];
    GetSystemDirectoryW(folder, MAX_PATH);
    return fs::path(folder) / kMonitorFile;
}

std::string FileBytes(const char* name) {
    std::ifstream file(Folder() / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Whether the installing program was started with exactly these options.
bool WasAsked(const WideText& options) {
    const WideText line = L"rundll32 printui.dll,PrintUIEntry " + options;
    const std::string log = FileBytes("rundll32.log");
    return log.find(std::string(line.begin(), line.end()) + "\n") != std::string::npos;
}

}  // namespace

Installation::Installation() {
    fs::remove(InstalledMonitor());
    fs::copy_file(PORT_MONITOR, InstalledMonitor());
    HKEY key = nullptr;
    RegCreateKeyW(HKEY_LOCAL_MACHINE, kMonitorKey, &key);
    RegSetValueExW(key, L"Driver", 0, REG_SZ, reinterpret_cast<const BYTE*>(kMonitorFile),
                   sizeof(kMonitorFile));
    RegCloseKey(key);
}

Installation::~Installation() {
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, kMonitorKey);
    for (const char* name : {"port.bin", "rundll32.log"})
        fs::remove(Folder() / name);
}

bool Installation::HasNetworkPort(const WideText& name, const WideText& host, DWORD number) const {
    constexpr size_t kHostAt = 144;
    constexpr size_t kNumberAt = 952;
    const std::string bytes = FileBytes("port.bin");
    if (bytes.size() != 964) return false;
    DWORD found = 0;
    std::memcpy(&found, bytes.data() + kNumberAt, sizeof(found));
    const auto isAt = [&](const WideText& text, size_t at) {
        return std::memcmp(bytes.data() + at, text.c_str(), (text.size() + 1) * sizeof(WCHAR)) == 0;
    };
    return isAt(name, 0) && isAt(host, kHostAt) && found == number;
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
