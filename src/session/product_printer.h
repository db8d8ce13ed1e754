// What the print spooler knows of the product's printers.
#pragma once

#include <optional>

#include "kwt/wide_text.h"

namespace session {

/// What the spooler keeps of one printer.
struct PrinterRecord {
    WideText portName;
    WideText driverName;
    bool bidirectional = false;  // bidirectional communication is enabled
};

/// Nothing, with the spooler's last-error value, when the printer cannot be opened or read; an empty name
/// opens nothing and leaves 0.
[[nodiscard]] std::optional<PrinterRecord> ReadPrinterRecord(const WCHAR* printerName);

/// Sets `name` to the last local printer, in the spooler's order, whose driver is one of the product's; empty
/// and false when there is none. The last-error value is then 0, 8 for lack of memory, or 3012 when the
/// spooler does not list its printers.
bool FindProductPrinter(WideText& name);

}  // namespace session
