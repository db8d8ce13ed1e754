// What a printer can be told to do wrong, and by what its requests are chosen: a row each. The rows are what
// the parser reads by, what --list-faults prints and what stands in the tables of docs/vprinter.md.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "shared/json.h"

namespace vprinter {

enum class FaultAction : uint8_t {
    None,  // what goes with every action: a delay, an answer that comes late
    NoReply,
    Lost,
    Hang,
    Restart,
    CrashBefore,
    CrashAfter,
    Busy,
    Offline,
    LockLost,
    NotKept,
    OtherProcess,
    Aborted,
    PreviousReply,
    Duplicate,
    Split,
    Repeat,
    Cut,
    NoTerminator,
    NoNumber,
    ResponseNumber,
    WrongKey,
    Value,
    HighBit,
    Items,
    Pad,
    Garbage,
    Reply,
};

/// What may stand behind a field's name.
enum class FieldForm : uint8_t {
    Yes,          // true
    Number,       // a whole number within the row's bounds
    YesOrNumber,  // either
    Text,         // a text as it is
    Readable,     // a text with the escapes of the trace
    Hex,          // a text as it is, or "hex:00 FF"
    Anything,
};

struct FaultField {
    std::string_view name;
    FieldForm form;
    std::string_view value;  // what it is, for people
    uint64_t lowest;
    uint64_t highest;
    std::string_view meaning;
};

struct FaultKind {
    FaultField field;
    FaultAction action;
    std::string_view client;  // what a program that asks through the library sees of it
};

/// Those that choose the requests.
[[nodiscard]] std::span<const FaultField> SelectionFields();
[[nodiscard]] std::span<const FaultKind> FaultKinds();

/// {"selection": [{"field", "value", "meaning"}], "kinds": [{"field", "value", "meaning", "client"}]}.
[[nodiscard]] tools::Json FaultFieldsJson();
/// The same for people.
[[nodiscard]] std::string FaultFieldsText();

}  // namespace vprinter
