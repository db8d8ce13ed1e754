// The client's exit codes.
#pragma once

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
    OwnFault = 70,      // the installation is incomplete: library, configuration, spooler
    Interrupted = 130,  // ended by the user
};

}  // namespace cli
