// Other ways for one process to ask another, each with a request and a reply as long as those of
// GetFaxRedials.
#pragma once

#include <string_view>

#include "engine/contender.h"

inline constexpr std::string_view kPeerRequest = "DeviceSettings.Fax.Redials?";
inline constexpr std::string_view kPeerReply = "0000,DeviceSettings.Fax.Redials=3;";

extern const Contender kUnixSocket;
extern const Contender kPipe;
extern const Contender kMessageQueue;
extern const Contender kZeroMq;
extern const Contender kDBus;
extern const Contender kGrpc;
extern const Contender kSnmp;
extern const Contender kIpp;
