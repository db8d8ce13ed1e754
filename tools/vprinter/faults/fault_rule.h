// A rule of a fault script: which requests it means, and the fault. Read from JSON, so that nobody writes
// code for a fault.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vprinter/faults/fault_kinds.h"

namespace vprinter {

struct Fault {
    uint32_t delayMs = 0;
    uint32_t jitterMs = 0;
    bool late = false;  // answer although the client must have given up
    FaultAction action = FaultAction::None;
    uint64_t number = 0;  // the action's own, as is the next one
    std::string bytes;
};

struct FaultRule {
    std::string name;                // empty: it has none
    std::vector<std::string> match;  // what stands between the stars; one text: a whole request
    std::string printer;             // port name; empty for every printer
    uint64_t skip = 0;               // matching requests to be let through
    uint64_t times = UINT64_MAX;
    uint64_t fromMs = 0;  // these two since the rule came into force
    uint64_t untilMs = UINT64_MAX;
    uint64_t everyMs = 0;   // 0: at every request
    uint64_t chance = 100;  // per cent
    uint64_t seed = 1;
    Fault fault;
};

/// Reads a list of rules from JSON text; throws UserError, whose text begins with `fileName` and a line.
[[nodiscard]] std::vector<FaultRule> ParseFaults(std::string_view text, const std::string& fileName);

/// The same from a value that is part of another document; `place` opens the complaints.
[[nodiscard]] std::vector<FaultRule> ReadFaults(const tools::Json& rules, const std::string& place);

/// Those that concern one printer.
[[nodiscard]] std::vector<FaultRule> FaultsFor(std::string_view port, const std::vector<FaultRule>& rules);

/// The port names that rules are limited to.
[[nodiscard]] std::vector<std::string> PrintersNamed(const std::vector<FaultRule>& rules);

}  // namespace vprinter
