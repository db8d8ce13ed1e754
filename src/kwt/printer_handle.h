// A print spooler handle for the length of one operation.
#pragma once

#include <windows.h>
#include <winspool.h>

#include "kwt/unique_handle.h"

namespace kwt {

/// Virtual in its end alone, like the other classes of the package.
class PrinterHandleClass final {
  public:
    /// Opens the printer; the last-error value is 0 on success and for an absent or empty name, else the
    /// spooler's. A name is cut to 259 characters.
    PrinterHandleClass(const WCHAR* name, PRINTER_DEFAULTSW* defaults);
    PrinterHandleClass(const PrinterHandleClass&) = delete;
    PrinterHandleClass& operator=(const PrinterHandleClass&) = delete;
    virtual ~PrinterHandleClass() = default;

    /// Null when nothing was opened.
    [[nodiscard]] HANDLE GetHandle() const { return handle_.Get(); }

  private:
    UniqueHandle<ClosePrinter> handle_;
};

/// Asks the printer's language monitor, through the spooler, to wake up; true when it answered. The
/// last-error value is whatever the spooler calls left.
bool WakeUpLanguageMonitor(const WCHAR* printerName);

}  // namespace kwt
