#include "settings/maintenance.h"

namespace settings {
namespace {

constexpr uint32_t kTimeoutMs = 5000;
constexpr uint32_t kStarted = 96;

bool Start(session::KestrelSDK& sdk, const std::string& request) {
    std::string& reply = sdk.NewReply();
    return sdk.Query(request, reply, kTimeoutMs) && sdk.TakeResponseNumber(reply) &&
           sdk.lastResponseNum == kStarted;
}

}  // namespace

bool StartMaintenance(session::KestrelSDK& sdk, opl::Word action) {
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendWord(request, action);
    return Start(sdk, request);
}

bool StartCleanHead(session::KestrelSDK& sdk, bool thoroughly) {
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendCleanHead(request, thoroughly);
    return Start(sdk, request);
}

}  // namespace settings
