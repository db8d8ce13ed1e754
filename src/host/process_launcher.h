// Starts other programs of the package.
#pragma once

#include "kwt/wide_text.h"

namespace host {

struct LaunchOptions {
    bool waitForInputIdle = true;  // until the program is idle for input, for 30 s at most
    bool waitForExit = false;      // then until its primary thread has ended, without limit
    bool hideWindow = false;
    bool runAsUser = false;          // with a token, profile and environment of a user, not the caller's
    bool showBusyCursor = true;      // while waiting
    bool useConsoleSession = false;  // with runAsUser: the user of the console, not the caller's own
};

/// True when the program was started; what became of it is not examined. While waiting for its end, the
/// calling thread's window messages are dispatched. A program that cannot be started leaves last-error
/// value 6.
bool LaunchProcess(const WideText& commandLine, LaunchOptions options);

}  // namespace host
