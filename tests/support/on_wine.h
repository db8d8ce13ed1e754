// Where Wine is known to differ from Windows, a case ends early and says why.
#pragma once

#include <windows.h>

inline bool OnWine() {
    const HMODULE system = GetModuleHandleW(TEXT("ntdll.dll"));
    return system != nullptr && GetProcAddress(system, "wine_get_version") != nullptr;
}
