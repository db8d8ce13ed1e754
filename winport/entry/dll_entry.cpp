// Linked into a library whose DllMain wants the system's load notices; it is no part of libwinport.
#include "winport/module/dll_entry.h"

WINPORT_EXTERN_C BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

namespace {

__attribute__((constructor)) void Announce() {
    WinportModuleLoaded(&DllMain);
}

__attribute__((destructor)) void Withdraw() {
    WinportModuleUnloaded(&DllMain);
}

}  // namespace
