// Signals, which the whole process blocks and one thread waits for.
#include <pthread.h>
#include <unistd.h>

#include <csignal>

#include "shared/process.h"

namespace tools {
namespace {

sigset_t EndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

}  // namespace

std::vector<std::string> Arguments(int count, const char* const* values) {
    return count > 0 ? std::vector<std::string>(values + 1, values + count) : std::vector<std::string>();
}

std::vector<Explained> CommonVariables() {
    return {{"WINPORT_HOME",
             "folder of printers, registry and what programs share; the same for all that are to meet"},
            {"WINPORT_ANSI_CODEPAGE", "number of the code page in which printers are spoken to; else 1252"}};
}

// Blocked here, before there are other threads, the signals reach nobody but the sigwait below. A closed
// reader of the output ends a write, not the printers.
EndRequest::EndRequest() {
    const sigset_t signals = EndSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

void EndRequest::Wait() {
    const sigset_t signals = EndSignals();
    int signal = 0;
    while (sigwait(&signals, &signal) != 0) {
    }
}

void EndRequest::Raise() {
    kill(getpid(), SIGTERM);
}

void EndAbruptly() {
    kill(getpid(), SIGKILL);
    for (;;)
        pause();
}

bool IsTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) == 1;
}

}  // namespace tools
