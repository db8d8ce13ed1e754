// What the status monitor is asked to do: to answer, to show one of its windows, to order supplies.
#include "host/status_monitor.h"
#include "kestrel/sdk_errors.h"
#include "session/kestrel_sdk.h"
#include "session/timing_table.h"

namespace session {
namespace {

constexpr uint32_t kPingMs = 1000;
constexpr uint32_t kShowMs = 5000;
constexpr uint32_t kOrderMs = 4000;
constexpr uint32_t kRefused = 0;

// What the status monitor is told in place of a printer's name.
constexpr WCHAR kNoPrinter[] = TEXT("Unknown");

}  // namespace

bool KestrelSDK::PingStatusMonitor() {
    SetLastError(NO_ERROR);
    uint32_t error = SDK_ERROR_SEND_INCOMPLETE;
    if (remoteChannel.SendCommand(ipc::RemoteCode::Ping, 0, nullptr, kPingMs)) {
        uint32_t answer = kRefused;
        if (remoteChannel.ReceiveReply(answer, kPingMs) && answer != kRefused) return true;
        error = SDK_ERROR_NO_REPLY;
    }
    // The channel's own reason says more.
    if (GetLastError() == NO_ERROR) SetLastError(error);
    return false;
}

bool KestrelSDK::ShowStatusMonitor() {
    return ShowOnStartedMonitor(ipc::RemoteCode::ShoW);
}

bool KestrelSDK::ShowMaintenance() {
    return ShowOnStartedMonitor(ipc::RemoteCode::ShoM);
}

bool KestrelSDK::ShowAboutBox() {
    SetLastError(NO_ERROR);
    return JudgeShown(remoteChannel.SendCommand(ipc::RemoteCode::ShoA, 0, nullptr, kShowMs));
}

bool KestrelSDK::ShowOnStartedMonitor(ipc::RemoteCode window) {
    SetLastError(NO_ERROR);
    // Whatever comes of it: the ping decides.
    static_cast<void>(host::EnsureStatusMonitorRunning());
    return PingStatusMonitor() && JudgeShown(SendPrinterName(window, kShowMs));
}

bool KestrelSDK::JudgeShown(bool sent) {
    uint32_t answer = kRefused;
    uint32_t error = NO_ERROR;
    if (!sent)
        error = SDK_ERROR_SEND_INCOMPLETE;
    else if (!remoteChannel.ReceiveReply(answer, kShowMs))
        error = SDK_ERROR_NO_REPLY;
    else if (answer == kRefused)
        error = ERROR_GEN_FAILURE;
    if (error != NO_ERROR) SetLastError(error);
    return error == NO_ERROR;
}

bool KestrelSDK::SendPrinterName(ipc::RemoteCode code, uint32_t timeoutMs) {
    const size_t bytes = (printerName.size() + 1) * sizeof(WCHAR);
    return remoteChannel.SendCommand(code, static_cast<uint32_t>(bytes), printerName.c_str(), timeoutMs);
}

bool KestrelSDK::OrderSupplies() {
    SetLastError(NO_ERROR);
    std::string_view reply;
    if (!Query(opl::Word::OrderInk, reply, kOrderMs))
        return remoteChannel.IsOpen() && OrderThroughStatusMonitor();
    uint8_t ordered = 0;
    if (!parser.GetBoolValue(reply, ordered)) return RejectReply(reply, SDK_ERROR_BAD_REPLY);
    if (ordered == 0) SetLastError(ERROR_GEN_FAILURE);
    return ordered != 0;
}

bool KestrelSDK::OrderThroughStatusMonitor() {
    connectionKind = 0;
    if (!remoteChannel.SendCommand(ipc::RemoteCode::SOIS, sizeof(kNoPrinter), kNoPrinter, kOrderMs))
        return false;
    uint32_t answer = kRefused;
    return remoteChannel.ReceiveReply(answer, PauseOf(Timing::SuppliesOrdering, connectionKind)) &&
           answer != kRefused;
}

}  // namespace session
