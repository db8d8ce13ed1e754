// Two sets of settings held against each other: printers, dumps and wanted files.
#pragma once

#include <catalogue/rows.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "kestrel/fleet/wanted_state.h"
#include "kestrel/printer/printer.h"

namespace cli {

// What one side has. A setting with no value was asked for and not told.
struct SettingSide final {
    std::map<const catalogue::Row*, std::optional<Value>> settings;
    bool isWhole = true;             // a printer; a file has what somebody wants, or was told
    std::optional<Failure> failure;  // why it ended early
};

[[nodiscard]] SettingSide SideOfPrinter(const Printer& printer,
                                        const std::function<void(std::string_view)>& step);
// `other`: the printer on the other side, if it is one, for which headings may count.
[[nodiscard]] SettingSide SideOfFile(const WantedState& state, const std::string& other);

struct Difference final {
    const catalogue::Row* row;
    std::optional<Value> left;
    std::optional<Value> right;
};

struct Comparison final {
    std::vector<Difference> differences;  // in the catalogue's order
    size_t compared = 0;
};

// Of two whole sides a setting that one of them does not have is a difference; else what both have counts.
[[nodiscard]] Comparison Compare(const SettingSide& left, const SettingSide& right);

}  // namespace cli
