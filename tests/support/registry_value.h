// What the registry holds.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <string>

// Its bytes; empty when there is no such value.
inline std::string RegistryValue(HKEY hive, const std::basic_string<WCHAR>& path, const WCHAR* name) {
    char bytes[128];
    DWORD size = sizeof(bytes);
    HKEY key = nullptr;
    if (RegOpenKeyW(hive, path.c_str(), &key) != ERROR_SUCCESS) return {};
    const LSTATUS status =
        RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<LPBYTE>(bytes), &size);
    RegCloseKey(key);
    return status == ERROR_SUCCESS ? std::string(bytes, size) : std::string();
}

// -1 when there is none.
inline int64_t RegistryNumber(HKEY hive, const std::basic_string<WCHAR>& path, const WCHAR* name) {
    const std::string bytes = RegistryValue(hive, path, name);
    DWORD number = 0;
    if (bytes.size() != sizeof(number)) return -1;
    std::memcpy(&number, bytes.data(), sizeof(number));
    return number;
}
