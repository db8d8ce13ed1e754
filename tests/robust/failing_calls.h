// Makes the system's calls and the allocation fail, in a program that is linked with failing_calls.cpp: what
// it and its libraries call is found here first.
#pragma once

namespace failing {

enum class Kind { None, SystemCall, Allocation };

constexpr int kShortRead = -1;  // in place of an error number: half of what was asked for

// The nth call from now on fails with `error`, and if `forever` all behind it.
void Arm(Kind kind, long nth, bool forever, int error);
// The calls of that kind since then.
long Disarm();

}  // namespace failing
