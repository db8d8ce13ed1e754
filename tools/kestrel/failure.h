// Why a command did not do what was asked.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kestrel/exit_codes.h"

namespace cli {

// The one thing that is thrown here: why a command did not do what was asked, for people and for scripts.
struct Failure final {
    ExitCode exit = ExitCode::OwnFault;
    std::string text;                        // what happened, what was expected
    std::string advice;                      // what to do; may be empty
    std::optional<uint32_t> code;            // the last-error value, when a call set one
    std::string badReply;                    // the reply judged bad, made readable; may be empty
    std::optional<uint32_t> responseNumber;  // of badReply
};

enum class Exchange { Read, Write };

// The failure that a last-error value of the library or the spooler stands for. `attempt` opens the text
// ("cannot read fax.redials"). The direction matters for one code: an invalid parameter is the caller's
// value when writing and the device's word when reading.
[[nodiscard]] Failure FailureFromCode(uint32_t code, const std::string& attempt, Exchange direction);

// "0xE0000003" for the library's own codes, decimal for the system's.
[[nodiscard]] std::string CodeText(uint32_t code);

// A printer that does not answer once will not answer for the other settings either: each would cost a
// time-out.
[[nodiscard]] bool IsHopeless(const Failure& failure);

[[nodiscard]] Failure UsageFailure(std::string text, std::string advice);
[[nodiscard]] Failure ValueFailure(std::string text, std::string advice);

}  // namespace cli
