// Programs and the system's calls, which fail for them.
#pragma once

#include <functional>
#include <string>
#include <vector>

// What programs do with the library and the layer below, each a short piece that succeeds when all goes well.
struct Scenario {
    std::string name;
    std::function<bool()> run;
    bool mayFailQuietly = false;  // its failure has no last-error value, or is no failure
    bool isExport = false;
};

// For a home where the product is installed and printer P answers.
[[nodiscard]] std::vector<Scenario> Scenarios();

// Makes the system's calls and the allocation fail, in a program that is linked with failing_calls.cpp: what
// it and its libraries call is found here first.
namespace failing {

enum class Kind { None, SystemCall, Allocation };

constexpr int kShortRead = -1;  // in place of an error number: half of what was asked for

// The nth call from now on fails with `error`, and if `forever` all behind it.
void Arm(Kind kind, long nth, bool forever, int error);
// The calls of that kind since then.
long Disarm();

}  // namespace failing
