#include "session/kestrel_sdk.h"

namespace session {

KestrelSDK::KestrelSDK() {
    remoteChannel.Open(ipc::ChannelRole::Client);
}

KestrelSDK::~KestrelSDK() = default;

}  // namespace session
