// Test files: requests and what is expected of them, for people who write no code.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kestrel/testing/variables.h"
#include "shared/json.h"

namespace cli {

enum class StepKind { Raw, Get, Set, Status };

// One exchange. Texts are as the file has them, their variables still in them.
struct TestStep final {
    StepKind kind = StepKind::Raw;
    std::string subject;  // the request, or the setting's name
    std::string to;       // the new value
    std::optional<std::string> reply;
    std::optional<std::string> value;
    std::optional<std::string> pattern;
    std::optional<std::string> error;  // a number, or a name of sdk_errors.h
    std::optional<uint32_t> exitCode;
    std::optional<uint32_t> withinMs;
    std::optional<uint32_t> timeoutMs;
    std::optional<uint32_t> retryMs;  // how long it may go otherwise, and is sent again
    std::string capture;              // the variable that takes the answer; empty: none
};

struct TestCase final {
    std::string name;
    std::string place;  // "fax.json:12: case 3"
    uint32_t repeat = 1;
    std::optional<tools::Json> faults;  // rules for the virtual printer
    std::vector<TestStep> steps;
};

struct TestFile final {
    std::string path;
    std::string control;  // the virtual printer's control file; empty: none
    Variables variables;
    std::vector<TestCase> cases;
};

// Everything is judged that can be without a printer. `given` stands above the file's own variables,
// `control` above its own control file. Throws a usage failure that says where, what was found and what was
// expected.
[[nodiscard]] TestFile ReadTestFile(const std::string& path, const Variables& given,
                                    const std::string& control);

// The error that a number or a name of sdk_errors.h stands for.
[[nodiscard]] std::optional<uint32_t> ErrorNamed(const std::string& text);

}  // namespace cli
