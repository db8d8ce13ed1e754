// The system's monitor of network ports, which Wine has not: "AddPort" is kept, byte for byte, in the file
// port.bin of the test's folder. The monitor runs inside the process that calls the spooler.
#include <windows.h>
#include <winsplp.h>
#include <winspool.h>

namespace {

BOOL WINAPI EnumPorts(HANDLE, LPWSTR, DWORD, LPBYTE, DWORD, LPDWORD needed, LPDWORD count) {
    *needed = 0;
    *count = 0;
    return TRUE;
}

BOOL WINAPI OpenConfiguration(HANDLE, LPCWSTR, ACCESS_MASK access, PHANDLE configuration) {
    static ACCESS_MASK granted;
    granted = access;
    *configuration = &granted;
    return TRUE;
}

BOOL WINAPI CloseConfiguration(HANDLE) {
    return TRUE;
}

DWORD WINAPI Configure(HANDLE configuration, LPCWSTR request, PBYTE input, DWORD size, PBYTE, DWORD,
                       PDWORD needed) {
    *needed = 0;
    if (lstrcmpW(request, L"AddPort") != 0) return ERROR_INVALID_PARAMETER;
    if ((*static_cast<ACCESS_MASK*>(configuration) & SERVER_ACCESS_ADMINISTER) == 0)
        return ERROR_ACCESS_DENIED;
    WCHAR path[MAX_PATH];
    ExpandEnvironmentStringsW(L"%KESTREL_TEST_FOLDER%\\port.bin", path, MAX_PATH);
    const HANDLE file =
        CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    WriteFile(file, input, size, &written, nullptr);
    CloseHandle(file);
    return written == size ? ERROR_SUCCESS : ERROR_DISK_FULL;
}

}  // namespace

extern "C" LPMONITOR2 WINAPI InitializePrintMonitor2(PMONITORINIT, PHANDLE monitor) {
    static MONITOR2 entries;
    entries.cbSize = sizeof(entries);
    entries.pfnEnumPorts = EnumPorts;
    entries.pfnXcvOpenPort = OpenConfiguration;
    entries.pfnXcvDataPort = Configure;
    entries.pfnXcvClosePort = CloseConfiguration;
    *monitor = &entries;
    return &entries;
}
