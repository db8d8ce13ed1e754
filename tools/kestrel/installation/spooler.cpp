// Each call's records put together and taken apart.
#include "kestrel/installation/spooler.h"

#include <windows.h>
// The spooler's header needs the one above.
#include <winspool.h>

#include <fmt/core.h>

#include <cstring>
#include <memory>

#include "kestrel/failure.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

constexpr DWORD kDriverVersion = 3;

[[noreturn]] void ThrowLastError(const std::string& attempt) {
    throw FailureFromCode(GetLastError(), attempt, Exchange::Write);
}

std::string Text(const WCHAR* text) {
    return text == nullptr ? std::string() : Utf8FromWide(text);
}

struct ClosesPrinter {
    void operator()(HANDLE printer) const { ClosePrinter(printer); }
};
using PrinterHandle = std::unique_ptr<void, ClosesPrinter>;

}  // namespace

std::vector<InstalledPrinter> InstalledPrinters() {
    DWORD size = 0;
    DWORD count = 0;
    std::vector<BYTE> block;
    // The list may grow between the question for its size and the reading: ask again with the new size.
    while (!EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, block.data(), static_cast<DWORD>(block.size()),
                          &size, &count)) {
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || size <= block.size()) {
            ThrowLastError("cannot list the installed printers");
        }
        block.resize(size);
    }

    std::vector<InstalledPrinter> printers;
    for (DWORD i = 0; i < count; ++i) {
        PRINTER_INFO_2W info;
        std::memcpy(&info, block.data() + i * sizeof(info), sizeof(info));
        printers.push_back({Text(info.pPrinterName), Text(info.pPortName), Text(info.pDriverName),
                            (info.Attributes & PRINTER_ATTRIBUTE_ENABLE_BIDI) != 0});
    }
    return printers;
}

void InstallPrinter(const InstalledPrinter& printer) {
    WideText name = WideArgument(printer.name, "printer name");
    WideText port = WideArgument(printer.port, "port name");
    WideText driver = WideArgument(printer.driver, "driver name");
    WideText processor = TEXT("WinPrint");
    WideText datatype = TEXT("RAW");

    PRINTER_INFO_2W info{};
    info.pPrinterName = name.data();
    info.pPortName = port.data();
    info.pDriverName = driver.data();
    info.pPrintProcessor = processor.data();
    info.pDatatype = datatype.data();
    info.Attributes = PRINTER_ATTRIBUTE_LOCAL | (printer.bidirectional ? PRINTER_ATTRIBUTE_ENABLE_BIDI : 0u);
    const PrinterHandle added(AddPrinterW(nullptr, 2, reinterpret_cast<LPBYTE>(&info)));
    if (!added) ThrowLastError(fmt::format("cannot add the printer \"{}\"", printer.name));
}

void RemovePrinter(const std::string& name) {
    WideText wideName = WideArgument(name, "printer name");
    PRINTER_DEFAULTSW defaults{nullptr, nullptr, PRINTER_ALL_ACCESS};
    HANDLE handle = nullptr;
    const std::string attempt = fmt::format("cannot remove the printer \"{}\"", name);
    if (!OpenPrinterW(wideName.data(), &handle, &defaults)) ThrowLastError(attempt);
    const PrinterHandle printer(handle);
    if (!DeletePrinter(handle)) ThrowLastError(attempt);
}

void AddDriver(const std::string& driver, const std::string& product) {
    WideText name = WideArgument(driver, "driver name");
    WideText prefix = WideArgument(product, "product");
    WideText driverFile = prefix + TEXT("DRV.DLL");
    WideText dataFile = prefix + TEXT(".INI");
    WideText configFile = prefix + TEXT("UI.DLL");
    WideText monitor = prefix + TEXT("MON.DLL");

    DRIVER_INFO_3W info{};
    info.cVersion = kDriverVersion;
    info.pName = name.data();
    info.pDriverPath = driverFile.data();
    info.pDataFile = dataFile.data();
    info.pConfigFile = configFile.data();
    info.pMonitorName = monitor.data();
    const DWORD flags = APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY;
    if (AddPrinterDriverExW(nullptr, 3, reinterpret_cast<LPBYTE>(&info), flags)) return;
    if (GetLastError() == ERROR_PRINTER_DRIVER_ALREADY_INSTALLED) return;
    ThrowLastError(fmt::format("cannot add the driver \"{}\"", driver));
}

std::string DriverDirectory() {
    DWORD bytes = 0;
    std::vector<WCHAR> path;
    while (!GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<LPBYTE>(path.data()),
                                       static_cast<DWORD>(path.size() * sizeof(WCHAR)), &bytes)) {
        const size_t units = bytes / sizeof(WCHAR) + 1;
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || units <= path.size()) {
            ThrowLastError("cannot find the printer driver directory");
        }
        path.resize(units);
    }
    return Utf8FromWide(path.data());
}

}  // namespace cli
