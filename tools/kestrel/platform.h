#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

// What the C++ library and the Windows calls leave to each system. One source per system, chosen by the
// build.
namespace cli::platform {

enum class Stream { kOut, kError };

// The arguments after the program's name, as UTF-8.
[[nodiscard]] std::vector<std::string> Arguments(int count, char** values);

// Standard output takes what is written to it as it stands: tables in files have line ends of their own.
void KeepLineEnds();

[[nodiscard]] bool IsTerminal(Stream stream);

// From now on an interrupt (Ctrl-C) writes the two texts to standard output and standard error and ends the
// program at once with `exitStatus`, also in the middle of an exchange. To be called before other threads
// run.
void EndOnInterrupt(std::string outText, std::string errorText, int exitStatus);

// How a wait for the user ended. kEnter stands for the end of standard input as well.
enum class WaitEnd { kTime, kEnter, kInterrupt };

// Waits for an interrupt, and for the time if one is given, else for a line of standard input. An interrupt
// does not end the program here.
[[nodiscard]] WaitEnd WaitForUser(std::optional<std::chrono::milliseconds> time);

// Ends the program at once: no library is unloaded, nothing is cleaned up, only what has been flushed is
// written.
[[noreturn]] void EndWithoutUnloading(int exitStatus);

}  // namespace cli::platform
