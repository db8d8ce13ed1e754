#include "installation.h"

#include <winspool.h>

#include <cstring>

namespace {

constexpr WCHAR kPrintKey[] = TEXT("SYSTEM\\CurrentControlSet\\Control\\Print\\");

// A value below the spooler's key, as bytes; empty when there is none.
std::string Value(const WideText& path, const WCHAR* name) {
    char bytes[128];
    DWORD size = sizeof(bytes);
    HKEY key = nullptr;
    if (RegOpenKeyW(HKEY_LOCAL_MACHINE, (kPrintKey + path).c_str(), &key) != 0) return {};
    const bool isRead =
        RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<LPBYTE>(bytes), &size) == 0;
    RegCloseKey(key);
    return isRead ? std::string(bytes, size) : std::string();
}

bool IsText(const std::string& value, const WideText& text) {
    const size_t size = (text.size() + 1) * sizeof(WCHAR);
    return value.size() == size && std::memcmp(value.data(), text.c_str(), size) == 0;
}

}  // namespace

Installation::Installation() = default;
Installation::~Installation() = default;

bool Installation::HasNetworkPort(const WideText& name, const WideText& host, DWORD number) const {
    const WideText port = TEXT("Monitors\\Standard TCP/IP Port\\Ports\\") + name;
    const std::string stored = Value(port, TEXT("PortNumber"));
    return IsText(Value(port, TEXT("HostName")), host) && stored.size() == sizeof(number) &&
           std::memcmp(stored.data(), &number, sizeof(number)) == 0;
}

bool Installation::HasDriver(const WideText&, const WideText& model) const {
    return !Value(TEXT("Environments\\Linux x64\\Drivers\\Version-3\\") + model, TEXT("Driver")).empty();
}

bool Installation::HasPrinter(const WideText& name, const WideText&, const WideText& model,
                              const WideText& port) const {
    const WideText printer = TEXT("Printers\\") + name;
    return IsText(Value(printer, TEXT("Printer Driver")), model) &&
           IsText(Value(printer, TEXT("Port")), port);
}

bool Installation::IsDefault(const WideText& printer) const {
    WCHAR chosen[64] = {};
    DWORD size = 64;
    return GetDefaultPrinterW(chosen, &size) && chosen == printer;
}
