// The system's list of process ids, read until it is whole.
#include "ipc/process_list.h"

#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace ipc {

bool IsProcessRunning(uint32_t processId) {
    constexpr size_t kStep = 256;
    std::vector<DWORD> ids;
    DWORD bytes = 0;
    // A list that fills the array may have been cut.
    do {
        ids.resize(ids.size() + kStep);
        const auto size = static_cast<DWORD>(ids.size() * sizeof(DWORD));
        if (!EnumProcesses(ids.data(), size, &bytes)) return false;
    } while (bytes >= ids.size() * sizeof(DWORD));
    ids.resize(bytes / sizeof(DWORD));
    return std::find(ids.begin(), ids.end(), processId) != ids.end();
}

}  // namespace ipc
