// What the C++ library and the Windows calls leave to each system. One source per system, chosen by the
// build.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace cli::platform {

// Standard output takes what is written to it as it stands: tables in files have line ends of their own.
void KeepLineEnds();

// From now on an interrupt (Ctrl-C) writes the two texts to standard output and standard error and ends the
// program at once with `exitStatus`, also in the middle of an exchange. To be called before other threads
// run.
void EndOnInterrupt(std::string outText, std::string errorText, int exitStatus);

// How a wait for the user ended. kEnter stands for the end of standard input as well.
enum class WaitEnd { Time, Enter, Interrupt };

// Waits for an interrupt, and for the time if one is given, else for a line of standard input. An interrupt
// does not end the program here.
[[nodiscard]] WaitEnd WaitForUser(std::optional<std::chrono::milliseconds> time);

// Who else can read what the programs and the printers tell one another, in words and with what to do about
// it; empty when nobody can.
[[nodiscard]] std::string OpenHomeWarning();

// The name by which the system finds the product's library when it is not beside this program; empty where a
// program's libraries always are.
[[nodiscard]] std::string InstalledLibrary(const std::string& product);

// The library that answers the Windows calls of this program, by the name that programs find it by; empty
// where the system itself answers them.
[[nodiscard]] std::filesystem::path SystemLibrary();

// Variables of the environment and their values; an empty value takes the variable away.
using Variables = std::vector<std::pair<std::string, std::string>>;

// Runs another program, found as the shell finds it, with this program's streams and these variables, and
// waits for its end. What it ended with, 128 and the signal's number where one ended it; nothing when it
// cannot be started.
[[nodiscard]] std::optional<int> RunProgram(const std::vector<std::string>& words,
                                            const Variables& variables);

// Ends the program at once: no library is unloaded, nothing is cleaned up, only what has been flushed is
// written.
[[noreturn]] void EndWithoutUnloading(int exitStatus);

}  // namespace cli::platform
