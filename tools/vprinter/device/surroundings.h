// What a printer asks of the process around it; tests put their own in place.
#pragma once

#include <cstdint>
#include <functional>

namespace vprinter {

struct Surroundings {
    /// Tells a client that holds the lock from one that died with it.
    std::function<bool(uint32_t processId)> isRunning;
    /// Milliseconds, for what takes time.
    std::function<uint64_t()> tickMs;
    /// The host's local time in seconds since the beginning of 2000.
    std::function<int64_t()> localSeconds;
};

/// Those of this process.
[[nodiscard]] Surroundings RealSurroundings();

}  // namespace vprinter
