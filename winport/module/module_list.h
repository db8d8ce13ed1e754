// The libraries that have told winport of their load-notice function.
#pragma once

#include <string>

namespace winport {

// The notices of a thread's begin and end, on that thread, under the loader lock.
void NotifyThreadStart();
void NotifyThreadEnd();

// Where the program of this process lies, and where winport does with its tools.
std::string ProgramFolder();
std::string WinportFolder();

}  // namespace winport
