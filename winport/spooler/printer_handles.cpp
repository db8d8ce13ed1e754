#include "winport/spooler/printer_handles.h"

#include <cstdint>
#include <memory>

#include "winport/registry/slot_table.h"

namespace winport {

namespace {

constexpr std::uint64_t kPrinterHandles = 0x50;

// Never destroyed: threads may hold printers open while the process exits.
SlotTable<OpenPrinter>& Handles() {
    static auto& handles = *std::make_unique<SlotTable<OpenPrinter>>(kPrinterHandles).release();
    return handles;
}

}  // namespace

HANDLE AddPrinterHandle(const OpenPrinter& printer) {
    return reinterpret_cast<HANDLE>(Handles().Add(printer));
}

std::optional<OpenPrinter> FindPrinterHandle(HANDLE handle) {
    return Handles().Find(reinterpret_cast<std::uint64_t>(handle));
}

bool RemovePrinterHandle(HANDLE handle) {
    return Handles().Remove(reinterpret_cast<std::uint64_t>(handle));
}

}  // namespace winport
