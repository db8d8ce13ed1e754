// What the device side knows of each of its settings: the product's own rows (key, type, words, text length)
// joined with this printer's facts (first value, range).
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "opl/vocabulary.h"

namespace vprinter {

enum class ValueKind : uint8_t { Flag, Number, Word, Text, Address };

struct SettingSpec {
    OplKey id;
    std::string_view key;
    ValueKind kind = ValueKind::Text;
    bool readable = true;
    bool writable = false;
    std::vector<std::string_view> words;  // of a Word
    uint32_t maxLength = 0;               // of a Text, in characters
    int32_t lowest = 0;                   // of a Number
    int32_t highest = 0;
    std::string_view initial;  // as people write it: YES, 3, Color, 192.168.0.1
};

/// All settings of the printer, each key once.
[[nodiscard]] std::vector<SettingSpec> PrinterSettings();

}  // namespace vprinter
