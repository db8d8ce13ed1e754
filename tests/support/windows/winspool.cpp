// A spooler that can be down, placed beside a test program as winspool.drv: each call goes on to the system's
// own unless the value "Stopped" in the spooler's key says 1 or the error that every call shall end with.
#include <windows.h>
#include <winspool.h>

namespace {

constexpr WCHAR kPrintKey[] = L"SYSTEM\\CurrentControlSet\\Control\\Print";

DWORD StoppedWith() {
    DWORD value = 0;
    DWORD size = sizeof(value);
    RegGetValueW(HKEY_LOCAL_MACHINE, kPrintKey, L"Stopped", RRF_RT_REG_DWORD, nullptr, &value, &size);
    return value == 1 ? RPC_S_SERVER_UNAVAILABLE : value;
}

HMODULE SystemSpooler() {
    WCHAR path[MAX_PATH + 16];
    GetSystemDirectoryW(path, MAX_PATH);
    lstrcatW(path, L"\\winspool.drv");
    static const HMODULE spooler = LoadLibraryW(path);
    return spooler;
}

template <typename Function, typename... Arguments>
BOOL PassOn(Function* function, const char* name, Arguments... arguments) {
    if (const DWORD error = StoppedWith(); error != 0) {
        SetLastError(error);
        return FALSE;
    }
    function = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(SystemSpooler(), name)));
    return function(arguments...);
}

}  // namespace

extern "C" {

BOOL WINAPI OpenPrinterW(LPWSTR name, LPHANDLE printer, LPPRINTER_DEFAULTSW defaults) {
    return PassOn(&OpenPrinterW, "OpenPrinterW", name, printer, defaults);
}

BOOL WINAPI ClosePrinter(HANDLE printer) {
    return PassOn(&ClosePrinter, "ClosePrinter", printer);
}

BOOL WINAPI GetPrinterW(HANDLE printer, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed) {
    return PassOn(&GetPrinterW, "GetPrinterW", printer, level, buffer, size, needed);
}

BOOL WINAPI EnumPrintersW(DWORD flags, LPWSTR name, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed,
                          LPDWORD count) {
    return PassOn(&EnumPrintersW, "EnumPrintersW", flags, name, level, buffer, size, needed, count);
}

BOOL WINAPI GetPrinterDriverDirectoryW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE buffer,
                                       DWORD size, LPDWORD needed) {
    return PassOn(&GetPrinterDriverDirectoryW, "GetPrinterDriverDirectoryW", server, environment, level,
                  buffer, size, needed);
}

// These two return their error.
DWORD WINAPI GetPrinterDataW(HANDLE printer, LPWSTR name, LPDWORD type, LPBYTE buffer, DWORD size,
                             LPDWORD needed) {
    const DWORD error = StoppedWith();
    return error != 0
               ? error
               : PassOn(&GetPrinterDataW, "GetPrinterDataW", printer, name, type, buffer, size, needed);
}

DWORD WINAPI SetPrinterDataW(HANDLE printer, LPWSTR name, DWORD type, LPBYTE data, DWORD size) {
    const DWORD error = StoppedWith();
    return error != 0 ? error : PassOn(&SetPrinterDataW, "SetPrinterDataW", printer, name, type, data, size);
}

BOOL WINAPI XcvDataW(HANDLE port, PCWSTR request, PBYTE input, DWORD inputSize, PBYTE output,
                     DWORD outputSize, PDWORD needed, PDWORD status) {
    return PassOn(&XcvDataW, "XcvDataW", port, request, input, inputSize, output, outputSize, needed, status);
}
}
