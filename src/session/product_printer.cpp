// The spooler is asked twice: for the size of its answer, then for the answer.
#include "session/product_printer.h"

#include <winspool.h>

#include <memory>
#include <new>

#include "host/product_config.h"
#include "kwt/printer_handle.h"

namespace session {
namespace {

constexpr DWORD kRecordLevel = 2;
constexpr DWORD kPrinterNotFound = 3012;

WideText TextOrEmpty(const WCHAR* text) {
    return text != nullptr ? WideText(text) : WideText();
}

/// The spooler writes records and the texts that they point to into one block.
class SpoolerBlock final {
  public:
    /// Zeroed; without bytes when there is no memory for `size` of them.
    explicit SpoolerBlock(DWORD size) : bytes_(new (std::nothrow) BYTE[size]()) {}

    [[nodiscard]] BYTE* Bytes() const { return bytes_.get(); }
    [[nodiscard]] const PRINTER_INFO_2W* Records() const {
        return reinterpret_cast<const PRINTER_INFO_2W*>(bytes_.get());
    }

  private:
    std::unique_ptr<BYTE[]> bytes_;
};

bool EnumLocalPrinters(BYTE* block, DWORD size, DWORD& needed, DWORD& count) {
    needed = 0;
    count = 0;
    return EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, kRecordLevel, block, size, &needed, &count) != FALSE;
}

bool LastOfProduct(const PRINTER_INFO_2W* records, DWORD count, WideText& name) {
    bool found = false;
    for (DWORD i = 0; i < count; ++i) {
        if (!host::CProductConfig::Instance().IsPrinterDriver(TextOrEmpty(records[i].pDriverName))) continue;
        name = TextOrEmpty(records[i].pPrinterName);
        found = true;
    }
    return found;
}

}  // namespace

std::optional<PrinterRecord> ReadPrinterRecord(const WCHAR* printerName) {
    const kwt::PrinterHandleClass printer(printerName, nullptr);
    if (printer.GetHandle() == nullptr) return std::nullopt;
    DWORD size = 0;
    GetPrinterW(printer.GetHandle(), kRecordLevel, nullptr, 0, &size);
    if (size == 0) return std::nullopt;
    const SpoolerBlock block(size);
    if (block.Bytes() == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return std::nullopt;
    }
    if (!GetPrinterW(printer.GetHandle(), kRecordLevel, block.Bytes(), size, &size)) return std::nullopt;
    const PRINTER_INFO_2W& record = *block.Records();
    return PrinterRecord{TextOrEmpty(record.pPortName), TextOrEmpty(record.pDriverName),
                         (record.Attributes & PRINTER_ATTRIBUTE_ENABLE_BIDI) != 0};
}

bool FindProductPrinter(WideText& name) {
    SetLastError(NO_ERROR);
    name.clear();
    DWORD needed = 0;
    DWORD count = 0;
    EnumLocalPrinters(nullptr, 0, needed, count);
    // Once more when a printer was added between the question for the size and the list.
    for (int attempt = 0; attempt < 2; ++attempt) {
        const DWORD size = needed;
        const SpoolerBlock block(size);
        if (block.Bytes() == nullptr) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return false;
        }
        if (EnumLocalPrinters(block.Bytes(), size, needed, count))
            return LastOfProduct(block.Records(), count, name);
        if (needed <= size) break;
    }
    SetLastError(kPrinterNotFound);
    return false;
}

}  // namespace session
