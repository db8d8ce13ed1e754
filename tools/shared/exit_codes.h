// What the printer's counterparts end with, one meaning each. The client has more to say:
// kestrel/exit_codes.h.
#pragma once

namespace tools {

enum ExitCode : int {
    kDone = 0,
    kDeparted = 1,     // a client has asked for something else than the record has
    kWrongUsage = 2,   // the command line, or a file that it names, cannot be used
    kNotRunning = 3,   // asked to end another process, and there is none
    kRunsAlready = 4,  // a living process does already what is asked for
    kOwnFault = 70,
};

}  // namespace tools
