#include "session/kestrel_sdk.h"

namespace session {

KestrelSDK::KestrelSDK() {
    remoteChannel.Open(ipc::ChannelRole::Client);
}

KestrelSDK::~KestrelSDK() = default;

std::string& KestrelSDK::NewRequest() {
    requestText_.clear();
    return requestText_;
}

std::string& KestrelSDK::NewQuery(opl::Key key) {
    std::string& request = NewRequest();
    builder.AppendQuery(request, key);
    return request;
}

std::string& KestrelSDK::NewReply() {
    replyText_.clear();
    return replyText_;
}

}  // namespace session
