// What winport's spooler keeps in the registry.
#pragma once

#include <windows.h>

#include <string>

#include "kwt/wide_text.h"

// A value below the spooler's key, as bytes; empty when there is none.
inline std::string SpoolerValue(const WideText& path, const WCHAR* name) {
    char bytes[128];
    DWORD size = sizeof(bytes);
    HKEY key = nullptr;
    const WideText whole = TEXT("SYSTEM\\CurrentControlSet\\Control\\Print\\") + path;
    if (RegOpenKeyW(HKEY_LOCAL_MACHINE, whole.c_str(), &key) != 0) return {};
    const bool isRead =
        RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<LPBYTE>(bytes), &size) == 0;
    RegCloseKey(key);
    return isRead ? std::string(bytes, size) : std::string();
}

// The same of plain characters.
inline std::string SpoolerText(const WideText& path, const WCHAR* name) {
    const std::string bytes = SpoolerValue(path, name);
    std::string text;
    for (size_t i = 0; i + sizeof(WCHAR) < bytes.size(); i += sizeof(WCHAR))
        text += bytes[i];
    return text;
}

inline std::string DriverText(const WideText& model, const WCHAR* name) {
    return SpoolerText(TEXT("Environments\\Linux x64\\Drivers\\Version-3\\") + model, name);
}

inline std::string PrinterText(const WideText& printer, const WCHAR* name) {
    return SpoolerText(TEXT("Printers\\") + printer, name);
}
