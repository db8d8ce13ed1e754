// The result of every wait of the transport.
#pragma once

#include <cstdint>

namespace kwt {

enum class WaitResult : uint32_t {
    Signaled = 0,  // the event was signalled, or the mutex acquired
    NoObject = 1,  // the wrapper holds no handle
    Failed = 2,
    TimedOut = 3,
    Abandoned = 4,  // an owner died with the object, or a section wait was cancelled
};

}  // namespace kwt
