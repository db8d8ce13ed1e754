// Ids are asked of the kernel once: every message of a channel carries the process id. A forked child has ids
// of its own, so the child's copies are forgotten.
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <windows.h>

#include <atomic>

namespace {

std::atomic<DWORD> processId{0};
__attribute__((tls_model("initial-exec"))) thread_local constinit DWORD threadId = 0;

void ForgetIds() {
    processId.store(0, std::memory_order_relaxed);
    threadId = 0;
}

[[gnu::constructor]] void ForgetIdsInChildren() {
    ::pthread_atfork(nullptr, nullptr, ForgetIds);
}

}  // namespace

DWORD GetCurrentProcessId() {
    DWORD id = processId.load(std::memory_order_relaxed);
    if (id == 0) {
        id = static_cast<DWORD>(::getpid());
        processId.store(id, std::memory_order_relaxed);
    }
    return id;
}

DWORD GetCurrentThreadId() {
    if (threadId == 0) threadId = static_cast<DWORD>(::syscall(SYS_gettid));
    return threadId;
}
