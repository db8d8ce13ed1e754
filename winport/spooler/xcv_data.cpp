// No port monitor is installed: none can be opened, so no handle is one's.
#include <windows.h>
#include <winspool.h>

BOOL XcvDataW(HANDLE, LPCWSTR, BYTE*, DWORD, BYTE*, DWORD, DWORD*, DWORD*) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}
