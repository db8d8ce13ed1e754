// The one rule for a reply that comes too late: its client has given up, lives on and asks no more.
//
// Such a reply stays in the response section, and the server that answers anybody else is refused with 32,
// again and again, until it takes the late reply back. It must not send at once then: a client that found the
// late reply in its way rests on it and takes the signal back afterwards, with it that of a reply that came
// meanwhile. Whoever serves more than one client sends by SendPastLateReply.
#pragma once

#include <windows.h>

#include "ipc/ipc_channel.h"

namespace ipc {

/// How long a client rests on a message of another before it looks again.
inline constexpr uint32_t kForeignPauseMs = 50;

/// How long a server rests between taking a reply back and sending the next: a client's pause, and half of
/// one for a machine that is busy.
inline constexpr uint32_t kPauseAfterCancelMs = kForeignPauseMs + kForeignPauseMs / 2;

enum class ReplySent { AtOnce, PastLateReply, Never };

/// `send()` posts the reply on `channel` and says whether it did; `pause(milliseconds)` may end early when
/// the server stops. After Never the last-error value is that of the last attempt.
template <typename Send, typename Pause>
[[nodiscard]] ReplySent SendPastLateReply(IPCChannel& channel, Send send, Pause pause) {
    if (send()) return ReplySent::AtOnce;
    if (GetLastError() != ERROR_SHARING_VIOLATION) return ReplySent::Never;
    channel.Cancel();
    pause(kPauseAfterCancelMs);
    return send() ? ReplySent::PastLateReply : ReplySent::Never;
}

}  // namespace ipc
