// How this process is called, how it is asked to end, how it ends, and who watches it. The build chooses the
// source for the system.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "shared/command_text.h"

namespace tools {

/// The arguments after the program's name, as UTF-8.
[[nodiscard]] std::vector<std::string> Arguments(int count, const char* const* values);

/// The user's wish that the program ends: an interrupt or a request to terminate. One object a process, made
/// before any other thread.
class EndRequest final {
  public:
    EndRequest();
    EndRequest(const EndRequest&) = delete;
    EndRequest& operator=(const EndRequest&) = delete;

    /// Returns when the user or `Raise` has asked for the end.
    void Wait();
    /// Asks for the end from within; any thread.
    void Raise();
};

/// The process is gone at once: no destructor, no buffer written, nothing released.
[[noreturn]] void EndAbruptly();

/// What every program takes from the environment, for its help and manual.
[[nodiscard]] std::vector<Explained> CommonVariables();

/// Whether somebody may be looking at stdout or stderr.
[[nodiscard]] bool IsTerminal(std::FILE* stream);

}  // namespace tools
