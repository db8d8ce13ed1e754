// A command is a record of code, length and data, of which only the bytes in use travel.
#include "ipc/remote_control_channel.h"

#include <cstring>

#include "kwt/object_names.h"

namespace ipc {
namespace {
constexpr uint32_t kRecordHeader = 8;
}

bool RemoteControlChannel::Open(ChannelRole role, const WCHAR* channelName, uint32_t maxMessage) {
    return OpenChannel(role, channelName, maxMessage);
}

bool RemoteControlChannel::Open(ChannelRole role) {
    return Open(role, kwt::ObjectNameTable::Instance()[kwt::ObjectName::RemoteControlChannel].c_str(),
                kMaxRemoteMessage);
}

bool RemoteControlChannel::SendCommand(RemoteCode code, uint32_t length, const void* data,
                                       uint32_t timeoutMs) {
    if (!IsClient() || length > kMaxRemoteData) return false;
    command_.code = static_cast<uint32_t>(code);
    command_.length = length;
    if (length > 0) std::memcpy(command_.data, data, length);
    return Send(&command_, length + kRecordHeader, timeoutMs) == length + kRecordHeader;
}

bool RemoteControlChannel::ReceiveCommand(RemoteCommand& command) {
    if (!IsServer()) return false;
    if (Receive(&command_, sizeof(command_), INFINITE) < kRecordHeader) return false;
    std::memcpy(&command, &command_, sizeof(command));
    return true;
}

bool RemoteControlChannel::ReceiveReply(uint32_t& value, uint32_t timeoutMs) {
    return IsClient() && Receive(&value, sizeof(value), timeoutMs) == sizeof(value);
}

bool RemoteControlChannel::SendReply(uint32_t value, uint32_t timeoutMs) {
    return IsServer() && Send(&value, sizeof(value), timeoutMs) == sizeof(value);
}

}  // namespace ipc
