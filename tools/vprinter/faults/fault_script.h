// What a printer is told to do wrong: rules read from a JSON file, so that nobody writes code for a fault.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vprinter {

enum class FaultAction : uint8_t {
    None,
    NoReply,         // the request is carried out, nothing is answered
    OtherProcess,    // the reply is addressed to the process id `number`, 0 standing for the printer's own
    Aborted,         // the reply is marked as that of an aborted operation
    Cut,             // only the first `number` bytes of the reply are sent
    Garbage,         // `bytes` instead of the reply
    Reply,           // `bytes` instead of the reply
    ResponseNumber,  // the reply opens with `number`
    Repeat,          // the reply `number` times in one message
    Pad,             // the reply lengthened to `number` bytes before its terminator
    CrashBefore,     // the process ends without a word when the request has arrived
    CrashAfter,      // ... when the reply has been sent
};

struct Fault {
    uint32_t delayMs = 0;
    bool late = false;  // answer although the client must have given up
    FaultAction action = FaultAction::None;
    uint64_t number = 0;
    std::string bytes;
};

struct FaultRule {
    std::string match;    // the whole request, or its beginning
    bool prefix = false;  // whether `match` is a beginning
    std::string printer;  // port name; empty for every printer
    uint64_t skip = 0;    // matching requests still to be let through
    uint64_t times = UINT64_MAX;
    Fault fault;
};

/// The rules for one printer, with its own counts. Belongs to the printer's serving thread.
class FaultScript final {
  public:
    FaultScript() = default;
    explicit FaultScript(std::vector<FaultRule> rules) : rules_(std::move(rules)) {}

    /// Reads rules from JSON text; throws UserError, whose text begins with `fileName` and a line.
    [[nodiscard]] static FaultScript Parse(std::string_view text, const std::string& fileName);

    /// The rules that concern one printer.
    [[nodiscard]] FaultScript For(std::string_view port) const;
    [[nodiscard]] size_t RuleCount() const { return rules_.size(); }
    /// The port names that rules are limited to.
    [[nodiscard]] std::vector<std::string> PrintersNamed() const;

    /// The fault for this request, from the first rule that matches and is neither still skipping nor used
    /// up; null for none.
    [[nodiscard]] const Fault* Next(std::string_view request);

  private:
    std::vector<FaultRule> rules_;
};

/// The message that goes out in place of `reply`; `scratch` holds it when it differs.
[[nodiscard]] std::string_view FaultyReply(const Fault& fault, std::string_view reply, std::string& scratch);

}  // namespace vprinter
