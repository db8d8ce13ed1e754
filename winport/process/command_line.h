// Command lines, taken apart as Windows programs do it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace winport {

// The arguments that the Windows run-time makes of a text: blanks divide, double quotes hold together, 2n
// backslashes before a quote are n backslashes, 2n + 1 are n and a plain quote.
std::vector<std::u16string> SplitArguments(std::u16string_view text);

// What the program of a command line may be: a name, and the arguments that are left then.
struct ProgramCandidate {
    std::u16string name;
    std::u16string_view rest;
};

// A quoted program is one candidate. Without quotes every blank may be its end or a part of its path: the
// shortest comes first.
std::vector<ProgramCandidate> ProgramCandidates(std::u16string_view commandLine);

}  // namespace winport
