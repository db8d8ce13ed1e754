// A printer brought to its wanted state.
#pragma once

#include <optional>
#include <vector>

#include "kestrel/fleet/wanted_state.h"
#include "kestrel/printer/printer.h"

namespace cli {

struct SettingChange final {
    const catalogue::Row* row;
    Value old;
    Value wanted;
};

struct ChangeOptions final {
    bool isDry = false;      // nothing is sent but questions
    bool rollsBack = false;  // after a refusal what was changed gets its old value again
};

struct ChangeResult final {
    size_t same = 0;                     // settings that were as wanted
    std::vector<SettingChange> changes;  // in the order in which they are made
    size_t done = 0;                     // of them, the first ones: made and read back, or to be made
    std::vector<const catalogue::Row*> putBack;
    std::optional<Failure> failure;  // why the rest was not done
};

// Reads every wanted setting before it changes the first; then changes one after the other, reads each back,
// and stops at the first that is refused or not kept.
[[nodiscard]] ChangeResult BringToState(const Printer& printer, const std::vector<WantedSetting>& wanted,
                                        const ChangeOptions& options);

}  // namespace cli
