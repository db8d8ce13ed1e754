// What the status monitor asks of the system itself. The build chooses the source for the system.
#pragma once

#include <cstdio>
#include <string>

namespace statusmon {

/// False when the standard output leads nowhere, as in a program that the library has started.
[[nodiscard]] bool HasOutput();

/// The folder of what this account's programs keep, made already or not; empty when there is none.
[[nodiscard]] std::string StateFolder();
/// A file in that folder to append to; the folder is made. Null when it is not to be had: there is no other
/// place that belongs to this account alone.
[[nodiscard]] std::FILE* OpenStateFile(const std::string& name);

}  // namespace statusmon
