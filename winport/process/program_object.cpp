// The process that starts a program must take its exit code, or the program stays as a corpse. A thread for
// each program does it: programs are few, and its thread sleeps in the kernel for the whole of its life.
#include "winport/process/program_object.h"

#include <pthread.h>
#include <signal.h>
#include <sys/wait.h>

#include <cerrno>
#include <memory>
#include <mutex>
#include <new>

#include "winport/handles/handle_table.h"
#include "winport/sync/event_object.h"

namespace winport {

namespace {

// A program that a signal ended, in the way of the shells.
constexpr DWORD kSignalBase = 128;
constexpr std::size_t kWatcherStack = 131'072;

// Between the end of a program and the moment its id may be used again: nobody sends a signal meanwhile.
constinit std::mutex idsLock;

struct Watch {
    ObjectReference process;
    ObjectReference thread;
};

DWORD ExitCodeOf(const ProgramObject& process, int status) {
    if (WIFEXITED(status)) return static_cast<DWORD>(WEXITSTATUS(status));
    const DWORD wanted = process.WantedExitCode();
    return wanted != STILL_ACTIVE ? wanted : kSignalBase + static_cast<DWORD>(WTERMSIG(status));
}

void* RunWatcher(void* argument) {
    const std::unique_ptr<Watch> watch(static_cast<Watch*>(argument));
    auto& process = static_cast<ProgramObject&>(*watch->process.Get());
    auto& thread = static_cast<ProgramObject&>(*watch->thread.Get());
    siginfo_t info = {};
    while (::waitid(P_PID, static_cast<id_t>(process.Id()), &info, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
    const std::lock_guard guard(idsLock);
    int status = 0;
    const bool taken = ::waitpid(process.Id(), &status, WNOHANG) == process.Id();
    // A host that ignores SIGCHLD or waits for all its children has taken the code away.
    const DWORD exitCode = taken ? ExitCodeOf(process, status) : 0;
    process.SetExitCode(exitCode);
    thread.SetExitCode(exitCode);
    thread.Signal();
    process.Signal();
    return nullptr;
}

// The host's signals are for the host's own threads.
bool StartWatcher(Watch* watch) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_attr_setstacksize(&attributes, kWatcherStack);
    pthread_t thread;
    const bool started = pthread_create(&thread, &attributes, RunWatcher, watch) == 0;
    pthread_attr_destroy(&attributes);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

}  // namespace

ProgramObject::ProgramObject(ObjectKind kind, pid_t id) : KernelObject(kind, &page_, true), id_(id) {}

bool ProgramObject::Terminate(DWORD exitCode) {
    const std::lock_guard guard(idsLock);
    if (ExitCode() != STILL_ACTIVE) return false;
    wantedExitCode_.store(exitCode, std::memory_order_release);
    return ::kill(id_, SIGKILL) == 0;
}

void ProgramObject::Signal() {
    SetSignal(*this);
}

bool WatchProgram(ProgramObject& process, ProgramObject& thread) {
    auto watch = std::make_unique<Watch>(Watch{ObjectReference(&process), ObjectReference(&thread)});
    if (!StartWatcher(watch.get())) return false;
    static_cast<void>(watch.release());
    return true;
}

namespace {

BOOL ReadExitCode(HANDLE handle, ObjectKind kind, LPDWORD exitCode) {
    if (exitCode == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const UsedObject used(handle, kind);
    if (!used) return FALSE;
    *exitCode = static_cast<const ProgramObject*>(used.Get())->ExitCode();
    return TRUE;
}

}  // namespace

}  // namespace winport

using namespace winport;

BOOL GetExitCodeProcess(HANDLE process, LPDWORD exitCode) {
    return ReadExitCode(process, ObjectKind::Process, exitCode);
}

BOOL GetExitCodeThread(HANDLE thread, LPDWORD exitCode) {
    return ReadExitCode(thread, ObjectKind::Thread, exitCode);
}

BOOL TerminateProcess(HANDLE process, UINT exitCode) {
    ObjectReference program;
    {
        const UsedObject used(process, ObjectKind::Process);
        if (!used) return FALSE;
        program = ObjectReference(used.Get());
    }
    if (static_cast<ProgramObject*>(program.Get())->Terminate(exitCode)) return TRUE;
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

// A program is taken for idle once it has been executed, which its start has waited for.
DWORD WaitForInputIdle(HANDLE process, DWORD) {
    const UsedObject used(process, ObjectKind::Process);
    return used ? 0 : WAIT_FAILED;
}
