// The vocabulary of vocabulary.def as enumerations and constant tables.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace opl {

enum class Key : uint16_t {
#define OPL_KEY(name, access, formatter, text) name,
#include "opl/vocabulary.def"
};

enum class Word : uint8_t {
#define OPL_WORD(name, text) name,
#include "opl/vocabulary.def"
};

enum class RecordList : uint8_t {
#define OPL_RECORD_LIST(name, text) name,
#include "opl/vocabulary.def"
};

enum class RecordField : uint8_t {
#define OPL_RECORD_FIELD(name, text) name,
#include "opl/vocabulary.def"
};

/// How a key may be used in a request.
enum class Access : uint8_t { ReadOnly, WriteOnly, ReadWrite };

/// The form of a set value; the values of these names are in opl_value.h.
enum class Formatter : uint8_t {
    None,  // the key cannot be set
    YesNoValue,
    TrueFalseValue,
    IntValue,
    ByteValue,
    WordValue,
    SignedByteValue,
    TextValue,
    AddressValue,
};

struct KeyRow {
    std::string_view text;
    Access access;
    Formatter formatter;

    [[nodiscard]] constexpr bool CanQuery() const { return access != Access::WriteOnly; }
    [[nodiscard]] constexpr bool CanSet() const { return access != Access::ReadOnly; }
};

/// Rows in the order of Key.
inline constexpr KeyRow kKeys[] = {
#define OPL_KEY(name, access, formatter, text) {text, Access::access, Formatter::formatter},
#include "opl/vocabulary.def"
};

/// Texts in the order of Word.
inline constexpr std::string_view kWords[] = {
#define OPL_WORD(name, text) text,
#include "opl/vocabulary.def"
};

/// Base keys in the order of RecordList.
inline constexpr std::string_view kRecordLists[] = {
#define OPL_RECORD_LIST(name, text) text,
#include "opl/vocabulary.def"
};

/// Field names, each with its leading dot, in the order of RecordField.
inline constexpr std::string_view kRecordFields[] = {
#define OPL_RECORD_FIELD(name, text) text,
#include "opl/vocabulary.def"
};

[[nodiscard]] constexpr const KeyRow& RowOf(Key key) {
    return kKeys[static_cast<size_t>(key)];
}
[[nodiscard]] constexpr std::string_view KeyText(Key key) {
    return RowOf(key).text;
}
[[nodiscard]] constexpr std::string_view WordText(Word word) {
    return kWords[static_cast<size_t>(word)];
}
[[nodiscard]] constexpr std::string_view RecordListText(RecordList list) {
    return kRecordLists[static_cast<size_t>(list)];
}
[[nodiscard]] constexpr std::string_view RecordFieldText(RecordField field) {
    return kRecordFields[static_cast<size_t>(field)];
}

}  // namespace opl
