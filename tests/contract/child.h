// The test program started by its own tests: "--child has VARIABLE", "--child wait EVENT", "--child take
// MUTEX".
#pragma once

#include "program.h"

// The exit code of such a run; nothing when it is none. "has" gives 1 or 0; "wait" 3 once the event is set,
// "take" 3 once it has the mutex. That one sets the event "<mutex>Opened" before it waits.
std::optional<int> RunAsChild(int argc, char** argv);

inline WideText OwnCommand(const WideText& arguments) {
    WCHAR path[1024];
    GetModuleFileNameW(nullptr, path, 1024);
    return TEXT("\"") + WideText(path) + TEXT("\" --child ") + arguments;
}
