// What the device side knows of each of its values: of the settings, the catalogue's rows; of what it answers
// besides, this printer's facts; of the address book, its records; and of the printer's condition, what no
// request reaches.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "opl/vocabulary.h"

namespace vprinter {

enum class ValueKind : uint8_t { Flag, Number, Word, Text, Address };

struct SettingSpec {
    std::optional<opl::Key> id;  // none for a record or a condition
    std::string_view key;
    ValueKind kind = ValueKind::Text;
    bool readable = true;
    bool writable = false;
    bool live = false;                    // the stored value is no more than what was last set
    std::vector<std::string_view> words;  // of a Word
    uint32_t maxLength = 0;               // of a Text, in characters
    int64_t lowest = 0;                   // of a Number
    int64_t highest = 0;
    std::string_view initial;  // as people write it: YES, 3, Color, 192.168.0.1

    /// Whether a request can name it.
    [[nodiscard]] bool IsReachable() const { return readable || writable; }
};

/// Everything that the printer keeps, each key once.
[[nodiscard]] std::vector<SettingSpec> PrinterSettings();

}  // namespace vprinter
