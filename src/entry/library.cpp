// The system's notices about the library's life. The loader's lock is held during each of them: nothing here
// waits, loads or starts anything.
#include "entry/library.h"

#include "entry/thread_object.h"
#include "kwt/object_names.h"

namespace entry {
namespace {

HMODULE libraryModule = nullptr;

bool BuildObjectNames(HMODULE module) {
    try {
        WCHAR path[MAX_PATH];
        const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
        return kwt::ObjectNameTable::Instance().Build(WideText(path, length));
    } catch (...) {
        return false;
    }
}

bool Attach(HMODULE module) {
    if (!TakeThreadSlot()) return false;
    if (!BuildObjectNames(module)) {
        FreeThreadSlot();
        return false;
    }
    libraryModule = module;
    ClearThreadSlot();
    return true;
}

// Also follows an attach that was refused, and then finds nothing to do.
void Detach() {
    ReleaseThreadSDK();
    FreeThreadSlot();
}

}  // namespace

HMODULE LibraryModule() {
    return libraryModule;
}

}  // namespace entry

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID /*reserved*/) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            return entry::Attach(module) ? TRUE : FALSE;
        case DLL_THREAD_ATTACH:
            entry::ClearThreadSlot();
            break;
        case DLL_THREAD_DETACH:
            entry::ReleaseThreadSDK();
            break;
        case DLL_PROCESS_DETACH:
            entry::Detach();
            break;
        default:
            break;
    }
    return TRUE;
}
