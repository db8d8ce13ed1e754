// An upgrade is asked for in steps: whether the printer can, a notice to the status monitor, the file.
#include "settings/firmware.h"

#include "kwt/strings.h"
#include "session/remaining_time.h"
#include "settings/typed_queries.h"

namespace settings {
namespace {

constexpr uint32_t kCapabilityMs = 5000;
constexpr uint32_t kNoticeMs = 1000;
constexpr uint32_t kNoticeReplyMs = 5000;
constexpr uint32_t kUpgradeMs = 60000;

constexpr uint32_t kDone = 101;
constexpr uint32_t kUpgradeStarted = 100000;

constexpr size_t kCapabilityBytes = 128;
constexpr const char* kThroughCommandLanguage = "OPL";

// The status monitor should not disturb the upgrade; that it does not answer is no reason against it.
void NotifyStatusMonitor(session::KestrelSDK& sdk) {
    uint32_t answer = 0;
    if (sdk.SendPrinterName(ipc::RemoteCode::SFWU, kNoticeMs))
        sdk.remoteChannel.ReceiveReply(answer, kNoticeReplyMs);
}

}  // namespace

bool GetFWVersion(session::KestrelSDK& sdk, uint32_t& lagoon, uint32_t& customer, WCHAR* printer,
                  uint32_t timeoutMs) {
    const session::RemainingTime time(timeoutMs);
    SetLastError(NO_ERROR);
    lagoon = 0;
    customer = 0;
    *printer = 0;
    uint32_t left = 0;
    return time.IsLeft(left) && QueryInt32(sdk, lagoon, opl::Key::FWVersionLagoon, left) &&
           time.IsLeft(left) && QueryInt32(sdk, customer, opl::Key::FWVersionCustomer, left) &&
           time.IsLeft(left) &&
           QueryText(sdk, printer, kPrinterVersionBytes, opl::Key::FWVersionPrinter, left);
}

bool GetCapFWUpgrade(session::KestrelSDK& sdk, uint8_t& capable, uint32_t timeoutMs) {
    capable = 0;
    WCHAR text[kCapabilityBytes / sizeof(WCHAR)];
    if (!QueryText(sdk, text, sizeof(text), opl::Key::CapFWUpgrade, timeoutMs)) return false;
    capable = kwt::AsciiString(text).ToByteString() == kThroughCommandLanguage;
    return true;
}

bool RefreshFWCapabilities(session::KestrelSDK& sdk, uint32_t timeoutMs) {
    std::string_view reply;
    return sdk.Query(opl::Word::ClearFWCaps, reply, timeoutMs) && sdk.TakeResponseNumber(reply) &&
           sdk.lastResponseNum == kDone;
}

bool UpgradeFW(session::KestrelSDK& sdk, const WCHAR* path) {
    if (GetFileAttributesW(path) == INVALID_FILE_ATTRIBUTES) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return false;
    }
    uint8_t capable = 0;
    if (!GetCapFWUpgrade(sdk, capable, kCapabilityMs) || capable == 0) {
        SetLastError(ERROR_NOT_SUPPORTED);
        return false;
    }
    NotifyStatusMonitor(sdk);
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendSetText(request, opl::Key::UpgradeFW, kwt::AsciiString(path).ToByteString());
    std::string_view reply;
    return sdk.Query(request, reply, kUpgradeMs) && sdk.TakeResponseNumber(reply) &&
           (sdk.lastResponseNum == kDone || sdk.lastResponseNum == kUpgradeStarted);
}

}  // namespace settings
