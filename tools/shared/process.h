// How this process is asked to end, how it ends, and who watches it. The build chooses the source for the
// system.
#pragma once

namespace tools {

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

/// Whether somebody may be looking at the error output.
[[nodiscard]] bool ErrorOutputIsTerminal();

}  // namespace tools
