// The wake-up is a query for a printer-data value that only the language monitor answers.
#include "kwt/printer_handle.h"

#include "kwt/strings.h"
#include "kwt/wide_text.h"

namespace kwt {

namespace {

// The spooler's text arguments are not const, though it only reads them.
WCHAR* Unconst(const WCHAR* text) {
    return const_cast<WCHAR*>(text);
}

constexpr const WCHAR* kWakeUpValue = TEXT("WakeUpLangMon");

using DeletePrinterDataCall = DWORD(WINAPI*)(HANDLE printer, LPWSTR valueName);

// Some systems lack the call altogether, and a library that imports it would not run there. Null means so.
DeletePrinterDataCall FindDeletePrinterData() {
    constexpr const WCHAR* kSpooler = TEXT("winspool.drv");
    HMODULE spooler = GetModuleHandleW(kSpooler);
    if (spooler == nullptr) spooler = LoadLibraryW(kSpooler);
    if (spooler == nullptr) return nullptr;
    // By way of void*: a direct cast between function types is what the compiler warns of.
    return reinterpret_cast<DeletePrinterDataCall>(
        reinterpret_cast<void*>(GetProcAddress(spooler, "DeletePrinterDataW")));
}

void DeleteWakeUpValue(HANDLE printer) {
    static const DeletePrinterDataCall deletePrinterData = FindDeletePrinterData();
    if (deletePrinterData != nullptr) deletePrinterData(printer, Unconst(kWakeUpValue));
}

}  // namespace

PrinterHandleClass::PrinterHandleClass(const WCHAR* name, PRINTER_DEFAULTSW* defaults) {
    DWORD error = NO_ERROR;
    if (name != nullptr && name[0] != 0) {
        WCHAR copy[MAX_PATH];
        CopyBoundedWide(copy, name, sizeof(copy));
        HANDLE printer = nullptr;
        if (OpenPrinterW(copy, &printer, defaults))
            handle_.Reset(printer);
        else
            error = GetLastError();
    }
    SetLastError(error);
}

bool WakeUpLanguageMonitor(const WCHAR* printerName) {
    PRINTER_DEFAULTSW defaults = {nullptr, nullptr, PRINTER_ALL_ACCESS};
    const PrinterHandleClass printer(printerName, &defaults);
    if (printer.GetHandle() == nullptr) return false;
    DeleteWakeUpValue(printer.GetHandle());
    // The language monitor answers the query, and its answer fits one byte.
    BYTE answer = 0;
    DWORD type = 0;
    DWORD needed = 0;
    return GetPrinterDataW(printer.GetHandle(), Unconst(kWakeUpValue), &type, &answer, sizeof(answer),
                           &needed) == ERROR_SUCCESS;
}

}  // namespace kwt
