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

bool ErrorOutputIsTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

}  // namespace tools
