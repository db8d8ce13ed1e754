// An action is one word, and its answer one response number.
#include "settings/maintenance.h"

namespace settings {
namespace {

constexpr uint32_t kTimeoutMs = 5000;
constexpr uint32_t kStarted = 96;

}  // namespace

bool StartMaintenance(session::KestrelSDK& sdk, opl::Word action) {
    std::string_view reply;
    return sdk.Query(action, reply, kTimeoutMs) && sdk.TakeResponseNumber(reply) &&
           sdk.lastResponseNum == kStarted;
}

bool StartCleanHead(session::KestrelSDK& sdk, bool thoroughly) {
    return StartMaintenance(sdk, thoroughly ? opl::Word::CleanHeadThoroughly : opl::Word::CleanHead);
}

}  // namespace settings
