#include "session/kestrel_sdk.h"

KestrelSDK::KestrelSDK() {
    remoteChannel.Open(kwt::ChannelRole::Client);
}

KestrelSDK::~KestrelSDK() = default;

std::string& KestrelSDK::NewRequest() {
    requestText_.clear();
    return requestText_;
}

std::string& KestrelSDK::NewQuery(OplKey key) {
    std::string& request = NewRequest();
    builder.AppendQuery(request, key);
    return request;
}

std::string& KestrelSDK::NewReply() {
    replyText_.clear();
    return replyText_;
}
