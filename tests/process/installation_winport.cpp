#include "installation.h"

#include <winspool.h>

#include <cstring>

#include "spooler_value.h"
#include "widened.h"

Installation::Installation() = default;
Installation::~Installation() = default;

bool Installation::HasNetworkPort(const WideText& name, const WideText& host, DWORD number) const {
    const WideText port = TEXT("Monitors\\Standard TCP/IP Port\\Ports\\") + name;
    const std::string stored = SpoolerValue(port, TEXT("PortNumber"));
    return Widened(SpoolerText(port, TEXT("HostName"))) == host && stored.size() == sizeof(number) &&
           std::memcmp(stored.data(), &number, sizeof(number)) == 0;
}

bool Installation::HasDriver(const WideText&, const WideText& model) const {
    return !DriverText(model, TEXT("Driver")).empty();
}

bool Installation::HasPrinter(const WideText& name, const WideText&, const WideText& model,
                              const WideText& port) const {
    return Widened(PrinterText(name, TEXT("Printer Driver"))) == model &&
           Widened(PrinterText(name, TEXT("Port"))) == port;
}

bool Installation::IsDefault(const WideText& printer) const {
    WCHAR chosen[64] = {};
    DWORD size = 64;
    return GetDefaultPrinterW(chosen, &size) && chosen == printer;
}
