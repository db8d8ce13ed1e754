#include "settings/maintenance.h"

#include "kestrel/sdk_errors.h"

namespace {

constexpr uint32_t kTimeoutMs = 5000;
constexpr uint32_t kStarted = 96;

bool Start(KestrelSDK& sdk, const std::string& request) {
    std::string& reply = sdk.NewReply();
    if (!sdk.Query(request, reply, kTimeoutMs)) return false;
    uint32_t number = 0;
    if (!sdk.parser.GetResponseNumber(reply, number)) return sdk.RejectReply(reply, SDK_ERROR_BAD_REPLY);
    sdk.lastResponseNum = number;
    return number == kStarted;
}

}  // namespace

bool StartMaintenance(KestrelSDK& sdk, OplWord action) {
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendWord(request, action);
    return Start(sdk, request);
}

bool StartCleanHead(KestrelSDK& sdk, bool thoroughly) {
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendCleanHead(request, thoroughly);
    return Start(sdk, request);
}
