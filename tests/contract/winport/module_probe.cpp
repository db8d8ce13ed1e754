// A library with load notices, copied under many names by modules_test.cpp: loads only if its own name is
// known to it.
#include <windows.h>

WINPORT_EXTERN_C BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    WCHAR path[MAX_PATH];
    return reason != DLL_PROCESS_ATTACH || GetModuleFileNameW(module, path, MAX_PATH) != 0;
}
