// The test program started by its own tests: "--child exit 7", "--child has VARIABLE", "--child wait EVENT".
#pragma once

#include <optional>

// The exit code of such a run; nothing when it is none. "has" gives 1 or 0, "wait" 3 once the event is set.
std::optional<int> RunAsChild(int argc, char** argv);
