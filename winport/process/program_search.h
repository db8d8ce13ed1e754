// Where a program named on a command line lies.
#pragma once

#include <string>
#include <string_view>

namespace winport {

// The file of a program: its path when the name has a folder, else looked for beside the calling program, in
// the current folder, beside winport and in the folder of its programs, and along PATH. "X" and "X.exe" both
// find X and X.exe, the name as given first. Empty when there is none.
std::string FindProgram(std::u16string_view name);

}  // namespace winport
