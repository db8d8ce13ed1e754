// Settings as they shall be: a file that a person wrote, or a printer's dump.
#pragma once

#include <catalogue/rows.h>

#include <string>
#include <string_view>
#include <vector>

#include "kestrel/settings/values.h"

namespace cli {

struct WantedSetting final {
    const catalogue::Row* row;
    Value value;
};

// What a part of the file wants of the printers that it names.
struct WantedPart final {
    std::string printers;  // a name or a pattern; empty: all
    std::vector<WantedSetting> settings;
};

struct WantedState final {
    std::vector<WantedPart> parts;
    bool isDump = false;
    size_t leftOut = 0;  // of a dump: what nobody can set, and what it masks or has as an error

    // For one printer, each setting once: the last part that names it counts. In the order of the file.
    [[nodiscard]] std::vector<WantedSetting> For(const std::string& printer) const;
};

// Lines `key = value` under headings `[printers]`, JSON ({"settings": {...}, "printers": {"Office*":
// {...}}}), or a dump. Every value is as its setting takes it. Throws a failure that names the file and the
// line or the setting: of values that cannot be taken, of settings that cannot be read or set, of one that
// stands twice.
[[nodiscard]] WantedState LoadWantedState(const std::string& path);
[[nodiscard]] WantedState ParseWantedState(std::string_view text, const std::string& name);

}  // namespace cli
