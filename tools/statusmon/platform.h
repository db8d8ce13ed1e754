// What the status monitor asks of the system itself, beyond what it shares with the virtual printer. The
// build chooses the source for the system.
#pragma once

#include <string>

namespace statusmon {

/// False when the standard output leads nowhere, as in a program that the library has started.
[[nodiscard]] bool HasOutput();

/// The folder of what this account's programs keep; ends in no separator and need not exist.
[[nodiscard]] std::string StateFolder();

}  // namespace statusmon
