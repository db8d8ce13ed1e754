// The exported functions of the status monitor, of supplies ordering and of installation.
#include "entry/export_call.h"
#include "host/printer_installation.h"
#include "host/status_monitor.h"
#include "kestrel/sdk_host.h"
#include "kwt/last_error_keeper.h"

#pragma GCC diagnostic error "-Wmissing-declarations"

using namespace entry;

kestrel_bool ShowStatusMonitor() {
    return OnThreadSDK(kFailure, [](KestrelSDK& sdk) { return sdk.ShowStatusMonitor(); });
}

kestrel_bool ShowAboutBox() {
    return OnThreadSDK(kFailure, [](KestrelSDK& sdk) { return sdk.ShowAboutBox(); });
}

kestrel_bool ShowMaintenance() {
    return OnThreadSDK(kFailure, [](KestrelSDK& sdk) { return sdk.ShowMaintenance(); });
}

kestrel_bool GetStatusMonitorDisplayMode() {
    return OnThreadSDK(kFailure, [](KestrelSDK&) {
        const kwt::LastErrorKeeper keeper;
        return host::GetStatusMonitorDisplayMode();
    });
}

kestrel_bool SetStatusMonitorDisplayMode(int32_t mode) {
    return OnThreadSDK(kFailure, [&](KestrelSDK&) {
        const kwt::LastErrorKeeper keeper;
        return host::SetStatusMonitorDisplayMode(mode);
    });
}

kestrel_bool OrderSupplies() {
    return OnThreadSDK(kFailure, [](KestrelSDK& sdk) { return sdk.OrderSupplies(); });
}

kestrel_bool AddNetPort(const kestrel_char* hostAddress, uint32_t portNumber, kestrel_char* portName) {
    return OnThreadSDK(kFailure,
                       [&](KestrelSDK&) { return host::AddNetPort(hostAddress, portNumber, portName); });
}

kestrel_bool AddDriverInstance(const kestrel_char* printerName, const kestrel_char* infPath,
                               const kestrel_char* model, const kestrel_char* port,
                               kestrel_bool makeDefault) {
    return OnThreadSDK(kFailure, [&](KestrelSDK&) {
        return host::AddDriverInstance(printerName, infPath, model, port, makeDefault != 0);
    });
}

kestrel_bool AddDriverFiles(const kestrel_char* infPath, const kestrel_char* model) {
    return OnThreadSDK(kFailure, [&](KestrelSDK&) { return host::AddDriverFiles(infPath, model); });
}
