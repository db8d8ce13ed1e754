// Every setting of the printer as a row that programs can walk: what people call it, its key in the command
// language, its exported functions and the types they take. Knows no device; made from settings.def.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "catalogue/value_tables.h"

/// The value's type in the exported functions. Numbers have the width their names say; an enumeration is a
/// uint32_t; a text is zero-terminated UTF-16; an address is read as four bytes in the order of the wire, and
/// set as one uint32_t whose lowest byte goes first.
/// A kS32 getter is declared with uint32_t*: the bits are those of an int32_t.
enum class SettingType { kBool, kU8, kS8, kU16, kU32, kS32, kEnum, kText, kAddress };

struct SettingRow {
    std::string_view name;  // fax.redials
    std::string_view key;   // DeviceSettings.Fax.Redials; empty when the printer is not asked
    SettingType type;       // the getter's, or the setter's when there is no getter
    const char* getter;     // exported name; null when the setting can only be set
    const char* setter;     // exported name; null when the setting can only be read
    SettingType readType;
    SettingType writeType;
    int32_t index;                     // first argument of both functions; negative when they take none
    uint32_t bufferBytes;              // of a text: what the getter may write, terminator included
    std::span<const EnumEntry> words;  // of an enumeration, without the end mark
    std::string_view about;
};

/// All rows, family by family. They live as long as the program.
[[nodiscard]] std::span<const SettingRow> Catalogue();
