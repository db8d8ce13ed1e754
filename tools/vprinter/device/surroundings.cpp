#include "vprinter/device/surroundings.h"

#include <ctime>

#include <windows.h>

#include "ipc/process_list.h"

namespace vprinter {
namespace {

constexpr int64_t kYear2000 = 946'684'800;  // seconds after 1970

int64_t LocalSeconds() {
    const __time64_t now = _time64(nullptr);
    tm local = {};
    if (_localtime64_s(&local, &now) != 0) return now - kYear2000;
    return _mkgmtime64(&local) - kYear2000;
}

}  // namespace

Surroundings RealSurroundings() {
    return {ipc::IsProcessRunning, [] { return uint64_t{GetTickCount64()}; }, LocalSeconds};
}

}  // namespace vprinter
