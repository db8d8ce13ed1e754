// Where the files of this process lie.
#pragma once

#include <string>

namespace winport {

// Where the program of this process lies, and where winport does with its tools.
std::string ProgramFolder();
std::string WinportFolder();

}  // namespace winport
