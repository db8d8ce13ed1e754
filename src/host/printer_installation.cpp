// Ports are asked of the port monitor; drivers and printers are left to the system's own program.
#include "host/printer_installation.h"

#include <winspool.h>

#include <initializer_list>

#include "host/process_launcher.h"
#include "host/tcp_port_data.h"
#include "kwt/printer_handle.h"
#include "kwt/strings.h"
#include "kwt/unique_handle.h"

namespace host {
namespace {

constexpr WCHAR kPortMonitor[] = TEXT(",XcvMonitor Standard TCP/IP Port");
constexpr WCHAR kPortPrefix[] = TEXT("ZRIJT_");
constexpr WCHAR kPrinterInterface[] = TEXT("rundll32 printui.dll,PrintUIEntry ");

bool Fail(DWORD error) {
    SetLastError(error);
    return false;
}

bool IsMissing(const WCHAR* text) {
    return text == nullptr || text[0] == 0;
}

bool AnyMissing(std::initializer_list<const WCHAR*> texts) {
    for (const WCHAR* text : texts) {
        if (IsMissing(text)) return true;
    }
    return false;
}

// As the system's number scan takes it: blanks and a sign may stand in front.
bool SkipNumber(const WCHAR*& text) {
    while (*text == ' ' || (*text >= '\t' && *text <= '\r'))
        ++text;
    if (*text == '+' || *text == '-') ++text;
    const WCHAR* const digits = text;
    while (*text >= '0' && *text <= '9')
        ++text;
    return text != digits;
}

/// Whether a text begins with four decimal numbers joined by dots.
bool IsDottedAddress(const WCHAR* text) {
    for (int number = 0; number < 4; ++number) {
        if (number > 0 && *text++ != '.') return false;
        if (!SkipNumber(text)) return false;
    }
    return true;
}

WideText ChoosePortName(WideView wanted, const WCHAR* hostAddress) {
    if (!wanted.empty()) return WideText(wanted);
    return IsDottedAddress(hostAddress) ? WideText(kPortPrefix) + hostAddress : WideText(hostAddress);
}

bool CanBeRead(const WCHAR* path) {
    const kwt::UniqueHandle<CloseHandle, -1> file(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file.IsHeld();
}

/// ` /option "text"`
WideText Quoted(const WCHAR* option, const WCHAR* text) {
    return WideText(TEXT(" /")) + option + TEXT(" \"") + text + TEXT("\"");
}

bool RunPrinterInterface(const WideText& options) {
    return LaunchProcess(kPrinterInterface + options, {.waitForInputIdle = true, .waitForExit = true});
}

}  // namespace

bool AddNetPort(const WCHAR* hostAddress, uint32_t portNumber, WCHAR* portName) {
    if (hostAddress == nullptr || portName == nullptr || WideView(hostAddress).size() > kMaxHostAddress ||
        WideView(portName).size() > kMaxPortName)
        return Fail(ERROR_INVALID_PARAMETER);
    SetLastError(NO_ERROR);
    PRINTER_DEFAULTSW access = {};
    access.DesiredAccess = SERVER_ACCESS_ADMINISTER;
    const kwt::PrinterHandleClass monitor(kPortMonitor, &access);
    if (monitor.GetHandle() == nullptr) return false;
    TcpPortData port;
    const WideText name = ChoosePortName(portName, hostAddress);
    kwt::CopyBoundedWide(port.portName, name.c_str(), sizeof(port.portName));
    kwt::CopyBoundedWide(port.hostAddress, hostAddress, sizeof(port.hostAddress));
    port.portNumber = portNumber;
    DWORD needed = 0;
    DWORD status = 0;  // the port monitor's own verdict, for nobody: the result of the call counts
    if (!XcvDataW(monitor.GetHandle(), TEXT("AddPort"), reinterpret_cast<BYTE*>(&port), sizeof(port), nullptr,
                  0, &needed, &status)) {
        portName[0] = 0;
        return false;
    }
    kwt::CopyBoundedWide(portName, name.c_str(), (kMaxPortName + 1) * sizeof(WCHAR));
    return true;
}

bool AddDriverFiles(const WCHAR* infPath, const WCHAR* model) {
    SetLastError(NO_ERROR);
    if (AnyMissing({infPath, model})) return Fail(ERROR_INVALID_PARAMETER);
    if (!CanBeRead(infPath)) return Fail(ERROR_FILE_NOT_FOUND);
    return RunPrinterInterface(TEXT("/ia") + Quoted(TEXT("f"), infPath) + Quoted(TEXT("m"), model));
}

bool AddDriverInstance(const WCHAR* printerName, const WCHAR* infPath, const WCHAR* model, const WCHAR* port,
                       bool makeDefault) {
    SetLastError(NO_ERROR);
    if (IsMissing(printerName)) return Fail(ERROR_INVALID_PRINTER_NAME);
    if (AnyMissing({infPath, model, port})) return Fail(ERROR_INVALID_PARAMETER);
    if (!CanBeRead(infPath)) return Fail(ERROR_FILE_NOT_FOUND);
    if (!RunPrinterInterface(TEXT("/if /u") + Quoted(TEXT("f"), infPath) + Quoted(TEXT("m"), model) +
                             Quoted(TEXT("r"), port) + Quoted(TEXT("b"), printerName)))
        return false;
    if (makeDefault) RunPrinterInterface(TEXT("/q /y") + Quoted(TEXT("n"), printerName));
    return true;
}

}  // namespace host
