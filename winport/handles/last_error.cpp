#include <windows.h>

namespace {
// Zero-initialised and without a destructor: reading it costs one instruction in any thread.
thread_local constinit DWORD lastError = 0;
}  // namespace

DWORD GetLastError() {
    return lastError;
}

void SetLastError(DWORD error) {
    lastError = error;
}
