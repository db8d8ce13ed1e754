#include "rundll32/printers.h"

#include <windows.h>
// The spooler's header needs the one above.
#include <winspool.h>

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "rundll32/refusal.h"

namespace printui {

namespace {

constexpr DWORD kDriverVersion = 3;

// The names of a level-1 list. It may grow between the question for its size and the reading: asked again.
template <typename Info, typename List>
std::vector<WideText> NamesOf(LPWSTR Info::*name, List list, const char* attempt) {
    DWORD size = 0;
    DWORD count = 0;
    std::vector<BYTE> block;
    while (!list(block.data(), static_cast<DWORD>(block.size()), &size, &count)) {
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || size <= block.size())
            throw RefusalFromLastError(attempt);
        block.resize(size);
    }
    std::vector<WideText> names;
    const auto* info = reinterpret_cast<const Info*>(block.data());
    for (DWORD i = 0; i < count; ++i)
        names.emplace_back(info[i].*name);
    return names;
}

std::vector<WideText> Drivers() {
    return NamesOf(
        &DRIVER_INFO_1W::pName,
        [](LPBYTE block, DWORD size, LPDWORD needed, LPDWORD count) {
            return EnumPrinterDriversW(nullptr, nullptr, 1, block, size, needed, count);
        },
        "cannot list the drivers");
}

std::vector<WideText> Ports() {
    return NamesOf(
        &PORT_INFO_1W::pName,
        [](LPBYTE block, DWORD size, LPDWORD needed, LPDWORD count) {
            return EnumPortsW(nullptr, 1, block, size, needed, count);
        },
        "cannot list the ports");
}

bool Holds(const std::vector<WideText>& names, WideView wanted) {
    return std::any_of(names.begin(), names.end(),
                       [&](const WideText& name) { return IsSameName(name, wanted); });
}

// USB001 and so on come with their devices and stand in no list.
bool IsUsbPort(WideView port) {
    return port.size() == 6 && Lower(port).starts_with(TEXT("usb")) &&
           std::all_of(port.begin() + 3, port.end(), [](WCHAR unit) { return unit >= '0' && unit <= '9'; });
}

}  // namespace

bool HasDriver(const WideText& model) {
    return Holds(Drivers(), model);
}

void AddDriver(const Driver& driver) {
    DRIVER_INFO_3W info{};
    info.cVersion = kDriverVersion;
    info.pName = Writable(driver.model);
    info.pDriverPath = Writable(driver.driverFile);
    info.pDataFile = Writable(driver.dataFile);
    info.pConfigFile = Writable(driver.configFile);
    info.pHelpFile = Writable(driver.helpFile);
    info.pMonitorName = Writable(driver.monitor);
    info.pDefaultDataType = Writable(driver.datatype);
    const DWORD flags = APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY;
    if (!AddPrinterDriverExW(nullptr, 3, reinterpret_cast<LPBYTE>(&info), flags))
        throw RefusalFromLastError(
            fmt::format("cannot install the driver \"{}\"", Utf8FromWide(driver.model)));
}

void CheckPort(const std::string& port) {
    const WideText wanted = WideFromUtf8(port);
    if (IsUsbPort(wanted) || Holds(Ports(), wanted)) return;
    throw Refusal{
        fmt::format("there is no port \"{}\".", port),
        "Give a USB port (USB001), a local port (LPT1:, FILE:) or a network port that was added before."};
}

void AddPrinter(const std::string& name, const std::string& port, const WideText& model) {
    const WideText wideName = WideFromUtf8(name);
    const WideText widePort = WideFromUtf8(port);
    PRINTER_INFO_2W info{};
    info.pPrinterName = Writable(wideName);
    info.pPortName = Writable(widePort);
    info.pDriverName = Writable(model);
    info.pPrintProcessor = Writable(TEXT("WinPrint"));
    info.pDatatype = Writable(TEXT("RAW"));
    info.Attributes = PRINTER_ATTRIBUTE_LOCAL | PRINTER_ATTRIBUTE_ENABLE_BIDI;
    const HANDLE added = AddPrinterW(nullptr, 2, reinterpret_cast<LPBYTE>(&info));
    if (added == nullptr) throw RefusalFromLastError(fmt::format("cannot install the printer \"{}\"", name));
    ClosePrinter(added);
}

void MakeDefault(const std::string& name) {
    if (!SetDefaultPrinterW(WideFromUtf8(name).c_str()))
        throw RefusalFromLastError(fmt::format("cannot make \"{}\" the default printer", name));
}

}  // namespace printui
