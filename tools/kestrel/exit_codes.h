// The client's exit codes.
#pragma once

#include <array>

namespace cli {

// What a script reads from the program's end. Each number has one meaning, whatever the command.
enum class ExitCode : int {
    Done = 0,
    DeviceRefused = 1,  // the device understood the request and said no
    Usage = 2,          // the command line is wrong; nothing was sent
    NoPrinter = 3,      // no such printer, or not one that this product can talk to
    NoAnswer = 4,       // time-out, or no language monitor serves the printer
    Locked = 5,         // somebody else holds the printer
    ValueRefused = 6,   // the value cannot be taken, or was not kept
    BadReply = 7,       // a reply came and was not understood
    CaseFailed = 8,     // a case of a test file did not end as expected
    Differs = 9,        // what was compared differs, or would be changed
    OwnFault = 70,      // the installation is incomplete: library, configuration, spooler
    Interrupted = 130,  // ended by the user
};

struct ExitCodeText final {
    ExitCode code;
    const char* meaning;
};
inline constexpr std::array<ExitCodeText, 12> kExitCodes = {{
    {ExitCode::Done, "done"},
    {ExitCode::DeviceRefused, "the device said no"},
    {ExitCode::Usage, "wrong usage: unknown command, option or key; nothing was sent"},
    {ExitCode::NoPrinter, "no such printer, or not one that the library can use"},
    {ExitCode::NoAnswer, "time-out, or no language monitor serves the printer"},
    {ExitCode::Locked, "locked by another"},
    {ExitCode::ValueRefused, "value refused before it was sent, or not kept by the printer"},
    {ExitCode::BadReply, "reply not understood"},
    {ExitCode::CaseFailed, "a test case failed"},
    {ExitCode::Differs, "there are differences, or a dry run would change something"},
    {ExitCode::OwnFault, "the installation is incomplete: library, product configuration, spooler"},
    {ExitCode::Interrupted, "interrupted"},
}};

}  // namespace cli
