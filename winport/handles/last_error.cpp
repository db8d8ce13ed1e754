#include <windows.h>

namespace {
// Zero-initialised, without a destructor and in the thread's static block: reading it is one instruction.
__attribute__((tls_model("initial-exec"))) thread_local constinit DWORD lastError = 0;
}  // namespace

DWORD GetLastError() {
    return lastError;
}

void SetLastError(DWORD error) {
    lastError = error;
}
