// The command channel to the language monitor: device command texts and their replies.
#pragma once

#include "ipc/ipc_channel.h"

namespace ipc {

/// Bytes of the longest request and of the longest reply.
inline constexpr uint32_t kMaxOplMessage = 0x100FF;

/// `Open` is virtual: all modules of the package agree on the class.
class OPLChannel : public IPCChannel {
  public:
    OPLChannel() = default;

    virtual bool Open(ChannelRole role, const WCHAR* channelName, uint32_t maxMessage);
    /// With the capacity of the product, kMaxOplMessage.
    virtual bool Open(ChannelRole role, const WCHAR* channelName);

    /// Whether the name that it was opened by holds a comma: the port's name is part of it, and a comma makes
    /// that a list of ports.
    [[nodiscard]] bool IsForPortList() const { return isForPortList_; }

  private:
    bool isForPortList_ = false;
};

}  // namespace ipc
