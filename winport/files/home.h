// Where winport keeps its state: one folder for kernel objects (memory-backed), one for what lasts.
#pragma once

#include <string>

namespace winport {

// Both return an absolute path without a trailing slash of a folder that exists, belongs to this account and
// is closed to others (unless WINPORT_HOME was given), or an empty string with the last-error value set.
// The environment is read at the first call of the process; later calls cost a lock-free look.
const std::string& KernelObjectDirectory();
const std::string& StateDirectory();

}  // namespace winport
