// Forked children of a test.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

inline int ExitCode(pid_t child) {
    int status = 0;
    if (::waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

// What the body, in a forked child, says of itself.
template <typename Body>
bool HoldsInChild(Body body) {
    constexpr unsigned kPatienceSeconds = 5;
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(kPatienceSeconds);
        ::_exit(body() ? 0 : 1);
    }
    return ExitCode(child) == 0;
}
