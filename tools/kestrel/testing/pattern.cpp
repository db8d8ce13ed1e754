// The matcher that keeps a list of states: the usual one of this library goes a step deeper into the stack
// with each character, and a reply of some thousand overflows it. The list knows no back-references.
#include "kestrel/testing/pattern.h"

#include <regex>

namespace cli {
namespace {

std::regex Compiled(const std::string& pattern) {
    return std::regex(pattern, std::regex::ECMAScript | std::regex_constants::__polynomial);
}

}  // namespace

std::string ProblemWithPattern(const std::string& pattern) {
    try {
        static_cast<void>(Compiled(pattern));
        return {};
    } catch (const std::regex_error& problem) {
        return problem.what();
    }
}

bool PatternFits(const std::string& pattern, const std::string& text) {
    return std::regex_search(text, Compiled(pattern));
}

}  // namespace cli
