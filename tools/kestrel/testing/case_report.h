// Results of test cases in the forms that people and programs read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kestrel/output/output.h"
#include "kestrel/testing/case_runner.h"

namespace cli {

// A line, and what was wrong below it.
[[nodiscard]] std::string CaseText(const CaseResult& result, const Paint& paint);

// Of the Test Anything Protocol, version 13: what comes first, and each case. Numbers begin at 1.
[[nodiscard]] std::string TapPlan(size_t cases);
[[nodiscard]] std::string TapText(size_t number, const CaseResult& result);

// One document with a suite for each file, as build servers read it.
[[nodiscard]] std::string JUnitDocument(const std::vector<CaseResult>& results);

// {"passed", "failed", "cases": [{"file", "name", "passed", "ms", "problem"}]}.
[[nodiscard]] tools::Json CasesJson(const std::vector<CaseResult>& results);

[[nodiscard]] size_t CountFailed(const std::vector<CaseResult>& results);

}  // namespace cli
