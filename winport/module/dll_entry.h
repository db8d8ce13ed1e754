// How a library tells winport of its DllMain. Only dll_entry.cpp, which is linked into such a library, calls
// these.
#pragma once

#include <windows.h>

typedef BOOL(WINAPI* WinportDllMain)(HINSTANCE module, DWORD reason, LPVOID reserved);

// Delivers the attach notice; false when the library refused it.
WINPORT_API int WinportModuleLoaded(WinportDllMain entry);
WINPORT_API void WinportModuleUnloaded(WinportDllMain entry);
