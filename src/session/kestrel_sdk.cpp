// The life of the object; its operations are in the files of their subjects.
#include "session/kestrel_sdk.h"

namespace session {

KestrelSDK::KestrelSDK() {
    remoteChannel.Open(ipc::ChannelRole::Client);
}

KestrelSDK::~KestrelSDK() = default;

}  // namespace session
