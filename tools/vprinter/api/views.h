// The parts of a printer as JSON, and the changes that JSON asks for. Values are those of `kestrel --json`.
// All of it runs on the printer's serving thread; a change that is not taken throws a Refusal.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shared/json.h"
#include "vprinter/api/printer_parts.h"

namespace vprinter::api {

/// What came in besides the port: the changing parts of the path, and the body (null without one).
struct Call {
    std::vector<std::string> arguments;
    tools::Json body;
};

/// Status, inks, trays, network and lock: what one sees of a printer.
[[nodiscard]] tools::Json StatusView(const PrinterParts& printer);
[[nodiscard]] tools::Json Status(const PrinterParts& printer, const Call& call);

/// Settings of the catalogue, and the conditions that no client reaches.
[[nodiscard]] tools::Json Settings(const PrinterParts& printer, const Call& call);
/// {"value": ...} for the setting named by the argument.
[[nodiscard]] tools::Json ChangeSetting(const PrinterParts& printer, const Call& call);

[[nodiscard]] tools::Json AddressBook(const PrinterParts& printer, const Call& call);
/// {"type", "name", "address"} for the record of a list and a number.
[[nodiscard]] tools::Json ChangeRecord(const PrinterParts& printer, const Call& call);

[[nodiscard]] tools::Json AccessPoints(const PrinterParts& printer, const Call& call);
[[nodiscard]] tools::Json SearchAccessPoints(const PrinterParts& printer, const Call& call);

/// The rules in force, as they are asked.
[[nodiscard]] tools::Json Faults(const PrinterParts& printer, const Call& call);
/// One more, a rule as in a fault script; it is given a name if it has none.
[[nodiscard]] tools::Json AddFault(const PrinterParts& printer, const Call& call);
[[nodiscard]] tools::Json RemoveFault(const PrinterParts& printer, const Call& call);

/// The value of a body as a text that the model takes. Throws for another kind of value, and for characters
/// that the printer's 8-bit code lacks or its language uses itself.
[[nodiscard]] std::string TextFor(const Setting& setting, const tools::Json& value);
/// Throws for what the setting does not take.
void Take(const PrinterParts& printer, Setting& setting, const std::string& text);

/// A value as `kestrel --json` has it.
[[nodiscard]] tools::Json ValueView(const Setting& setting);

inline constexpr std::string_view kMask = "********";

}  // namespace vprinter::api
