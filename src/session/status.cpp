// The status query: the printer's state as the language monitor knows it, in one block of bytes.
#include "host/status_monitor.h"
#include "kestrel/sdk_errors.h"
#include "kwt/object_names.h"
#include "kwt/win_event.h"
#include "session/kestrel_sdk.h"
#include "session/status_block.h"

namespace session {
namespace {

constexpr int kAttempts = 8;
constexpr uint32_t kQueryMs = 5000;
constexpr uint32_t kPauseMs = 2000;
constexpr uint32_t kUpdateMs = 1000;
constexpr uint32_t kUpdatePauseMs = 250;  // lets the status monitor's own status query go first

[[nodiscard]] bool StatusMonitorIsRunning() {
    const WideText& name = kwt::ObjectNameTable::Instance()[kwt::ObjectName::StatusMonitorClass];
    return kwt::WinEvent(name.c_str(), false).IsSignaled();
}

}  // namespace

bool KestrelSDK::GetStatus(DeviceStatusRecord* record) {
    SetLastError(NO_ERROR);
    lastResponseNum = kNoResponseYet;
    *record = {};
    if (!StatusMonitorIsRunning() && !(host::EnsureStatusMonitorRunning() && PingStatusMonitor()))
        return false;
    RequestStatusUpdate();
    return QueryStatus(record);
}

void KestrelSDK::RequestStatusUpdate() {
    uint32_t answer = 0;
    if (SendPrinterName(ipc::RemoteCode::UpSt, kUpdateMs) && remoteChannel.ReceiveReply(answer, kUpdateMs))
        Sleep(kUpdatePauseMs);
}

bool KestrelSDK::QueryStatus(DeviceStatusRecord* record) {
    std::string_view reply;
    std::vector<uint8_t> sent;
    for (int left = kAttempts - 1; left >= 0; --left) {
        if (!Query(opl::Word::GetStatus, reply, kQueryMs)) continue;
        if (!parser.GetBinaryValue(reply, sent)) {
            RejectReply(reply, SDK_ERROR_BAD_REPLY);
            continue;
        }
        const StatusBlock block(sent);
        block.CopyTo(record);
        const bool found = block.IsKnown() || left == 0;
        if (!found) Sleep(kPauseMs);
        connectionKind = block.ConnectionKind();
        if (found) return true;
    }
    return false;
}

}  // namespace session
