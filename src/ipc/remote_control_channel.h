// The channel to the status monitor program: small commands with 32-bit replies.
#pragma once

#include <cstdint>

#include "ipc/ipc_channel.h"

namespace ipc {

inline constexpr uint32_t kMaxRemoteMessage = 0x10000;
inline constexpr uint32_t kMaxRemoteData = kMaxRemoteMessage - 8;

/// The four bytes of a code, from the most significant down, spell its letters.
enum class RemoteCode : uint32_t {
    Ping = 0x50696E67,
    UpSt = 0x55705374,
    ShoW = 0x53686F57,
    ShoM = 0x53686F4D,
    ShoA = 0x53686F41,
    SOIS = 0x534F4953,
    SFWU = 0x53465755,
};

struct RemoteCommand {
    uint32_t code;
    uint32_t length;  // data bytes that follow; hostile on the receiving side
    uint8_t data[kMaxRemoteData];
};
static_assert(sizeof(RemoteCommand) == kMaxRemoteMessage);

/// Both ends in one class, virtual in this order: all modules of the package agree on it.
class RemoteControlChannel : public IPCChannel {
  public:
    RemoteControlChannel() = default;

    virtual bool Open(ChannelRole role, const WCHAR* channelName, uint32_t maxMessage);
    /// Under the product's own channel name and capacity.
    virtual bool Open(ChannelRole role);
    /// Client: sends one command with `length` bytes of data, at most kMaxRemoteData; true when all of it was
    /// accepted within `timeoutMs`. In the other role, and on a closed channel, false at once with the
    /// last-error value untouched; the three below likewise.
    virtual bool SendCommand(RemoteCode code, uint32_t length, const void* data, uint32_t timeoutMs);
    /// Server: takes the next command without time limit. The record's `length` may exceed what was received.
    virtual bool ReceiveCommand(RemoteCommand& command);
    /// Client: the 32-bit reply to the last command.
    virtual bool ReceiveReply(uint32_t& value, uint32_t timeoutMs);
    /// Server: answers the last command.
    virtual bool SendReply(uint32_t value, uint32_t timeoutMs);

  private:
    RemoteCommand command_;  // not cleared: 64 KiB, only the bytes in use are ever sent
};

}  // namespace ipc
