// Which processes are running.
#pragma once

#include <cstdint>

namespace ipc {

/// False too when the list of processes cannot be read. Process ids are used again by the system: a dead
/// process may be taken for a running one, never the other way round.
[[nodiscard]] bool IsProcessRunning(uint32_t processId);

}  // namespace ipc
