#include "ipc/opl_channel.h"

bool OPLChannel::Open(kwt::ChannelRole role, const WCHAR* channelName, uint32_t maxMessage) {
    return OpenChannel(role, channelName, maxMessage);
}

bool OPLChannel::Open(kwt::ChannelRole role, const WCHAR* channelName) {
    return Open(role, channelName, kMaxOplMessage);
}
