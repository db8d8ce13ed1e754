// Printer selection: from a printer's name to an open command channel.
#include "host/product_config.h"
#include "kestrel/sdk_errors.h"
#include "kwt/object_names.h"
#include "kwt/printer_handle.h"
#include "session/kestrel_sdk.h"
#include "session/product_printer.h"

namespace session {
namespace {

constexpr uint32_t kPingTimeoutMs = 1000;
constexpr int32_t kUsbPort = 0;
constexpr int32_t kOtherPort = 1;

/// 0 when requests to such a printer can be answered.
uint32_t RefusalOf(const WideText& driver, bool bidirectional) {
    if (!host::CProductConfig::Instance().IsPrinterDriver(driver)) return ERROR_INVALID_PRINTER_NAME;
    return bidirectional ? NO_ERROR : SDK_ERROR_BIDI_DISABLED;
}

}  // namespace

bool KestrelSDK::SelectPrinter(const WCHAR* name) {
    printerName.clear();
    driverName.clear();
    WideText wanted;
    if (name != nullptr && name[0] != 0)
        wanted = name;
    else
        FindProductPrinter(wanted);
    uint32_t error = NO_ERROR;
    WideText port;
    const bool selected = AcceptPrinter(wanted, port, error) && OpenCommandChannel(port, error);
    if (selected && wakeUpPending) {
        kwt::WakeUpLanguageMonitor(wanted.c_str());
        error = GetLastError();
        wakeUpPending = !Ping();
    }
    SetLastError(error);
    return selected;
}

bool KestrelSDK::AcceptPrinter(const WideText& name, WideText& port, uint32_t& error) {
    error = NO_ERROR;
    if (name.starts_with(TEXT("\\\\")))
        error = SDK_ERROR_NETWORK_PRINTER_NAME;
    else if (printerLocked)
        error = ERROR_LOCKED;
    if (error != NO_ERROR) return false;
    const std::optional<PrinterRecord> record = ReadPrinterRecord(name.c_str());
    if (!record) {
        error = GetLastError();
        return false;
    }
    printerName = name.substr(0, kMaxPrinterName);
    driverName = record->driverName.substr(0, kMaxPrinterName);
    error = RefusalOf(driverName, record->bidirectional);
    if (error != NO_ERROR) return false;
    connectionKind = record->portName.starts_with(TEXT("USB")) ? kUsbPort : kOtherPort;
    port = record->portName;
    return true;
}

bool KestrelSDK::OpenCommandChannel(const WideText& port, uint32_t& error) {
    const WideText name = kwt::ObjectNameTable::Instance()[kwt::ObjectName::CommandChannelBase] + port;
    const bool opened = oplChannel.Open(ipc::ChannelRole::Client, name.c_str());
    error = GetLastError();
    return opened;
}

bool KestrelSDK::Ping() {
    std::string_view reply;
    return Query(opl::Word::Ping, reply, kPingTimeoutMs);
}

}  // namespace session
