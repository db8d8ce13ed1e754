// The process's clocks, and a look at the list of processes.
#include "vprinter/device/surroundings.h"

#include <windows.h>

#include "ipc/process_list.h"
#include "shared/time_text.h"

namespace vprinter {

Surroundings RealSurroundings() {
    return {ipc::IsProcessRunning, [] { return uint64_t{GetTickCount64()}; }, tools::LocalSecondsSince2000};
}

}  // namespace vprinter
