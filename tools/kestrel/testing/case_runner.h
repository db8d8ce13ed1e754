// Runs the cases of a test file against a printer.
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "kestrel/printer/printer.h"
#include "kestrel/testing/test_file.h"

namespace cli {

struct CaseResult final {
    std::string file;
    std::string name;
    std::string place;
    std::chrono::milliseconds took{0};
    std::string problem;  // what was expected and what was found; empty: passed

    [[nodiscard]] bool HasPassed() const { return problem.empty(); }
};

// In the order of the file; `onEnd` is told of each. A step without a time-out of its own has `timeoutMs`.
// Returns whether the last step gave up its request, as it may have been meant to.
bool RunCases(Printer& printer, const TestFile& file, uint32_t timeoutMs,
              const std::function<void(const CaseResult&)>& onEnd);

}  // namespace cli
