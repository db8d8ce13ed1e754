// The name tells whether the channel belongs to one port.
#include "ipc/opl_channel.h"

namespace ipc {

bool OPLChannel::Open(ChannelRole role, const WCHAR* channelName, uint32_t maxMessage) {
    const bool opened = OpenChannel(role, channelName, maxMessage);
    isForPortList_ = GetName().find(TEXT(',')) != WideText::npos;
    return opened;
}

bool OPLChannel::Open(ChannelRole role, const WCHAR* channelName) {
    return Open(role, channelName, kMaxOplMessage);
}

}  // namespace ipc
