#include <windows.h>

#include <new>

#include "winport/handles/handle_table.h"
#include "winport/sync/mutex_object.h"

using namespace winport;

HANDLE CreateMutexW(LPSECURITY_ATTRIBUTES, BOOL initialOwner, LPCWSTR name) try {
    ThreadRecord& thread = CurrentThread();
    ObjectRequest request{ObjectKind::Mutex};
    request.name = name;
    const bool named = name != nullptr && *name != 0;
    if (initialOwner) {
        if (named && thread.ownerToken == 0) thread.ownerToken = TakeOwnerToken();
        request.owner = named ? thread.ownerToken : thread.localId;
        if (request.owner == 0) return nullptr;
    }
    HANDLE handle = CreateOrOpenObject(request, MutexObject::Make);
    if (handle != nullptr && initialOwner && GetLastError() == ERROR_SUCCESS) {
        const UsedObject used(handle);
        static_cast<MutexObject*>(used.Get())->BeginOwnership(thread, request.owner);
    }
    return handle;
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);  // of the token
    return nullptr;
}

BOOL ReleaseMutex(HANDLE mutex) {
    const UsedObject used(mutex, ObjectKind::Mutex);
    if (!used) return FALSE;
    if (static_cast<MutexObject*>(used.Get())->ReleaseLevel(used.Thread())) return TRUE;
    SetLastError(ERROR_NOT_OWNER);
    return FALSE;
}
