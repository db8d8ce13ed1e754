// The client's exit codes.
#pragma once

namespace cli {

// What a script reads from the program's end. Each number has one meaning, whatever the command.
enum class ExitCode : int {
    kDone = 0,
    kDeviceRefused = 1,  // the device understood the request and said no
    kUsage = 2,          // the command line is wrong; nothing was sent
    kNoPrinter = 3,      // no such printer, or not one that this product can talk to
    kNoAnswer = 4,       // time-out, or no language monitor serves the printer
    kLocked = 5,         // somebody else holds the printer
    kValueRefused = 6,   // the value cannot be taken, or was not kept
    kBadReply = 7,       // a reply came and was not understood
    kOwnFault = 70,      // the installation is incomplete: library, configuration, spooler
    kInterrupted = 130,  // ended by the user
};

}  // namespace cli
