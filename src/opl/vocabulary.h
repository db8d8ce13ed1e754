// The vocabulary of vocabulary.def as enumerations and constant tables.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

enum class OplKey : uint16_t {
#define OPL_KEY(Name, Access, Formatter, Text) Name,
#include "opl/vocabulary.def"
};

enum class OplWord : uint8_t {
#define OPL_WORD(Name, Text) Name,
#include "opl/vocabulary.def"
};

enum class OplRecordList : uint8_t {
#define OPL_RECORD_LIST(Name, Text) Name,
#include "opl/vocabulary.def"
};

enum class OplRecordField : uint8_t {
#define OPL_RECORD_FIELD(Name, Text) Name,
#include "opl/vocabulary.def"
};

/// How a key may be used in a request.
enum class OplAccess : uint8_t { ReadOnly, WriteOnly, ReadWrite };

/// The form of a set value; the values of these names are in opl_value.h.
enum class OplFormatter : uint8_t {
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

struct OplKeyRow {
    std::string_view text;
    OplAccess access;
    OplFormatter formatter;

    [[nodiscard]] constexpr bool CanQuery() const { return access != OplAccess::WriteOnly; }
    [[nodiscard]] constexpr bool CanSet() const { return access != OplAccess::ReadOnly; }
};

/// Rows in the order of OplKey.
inline constexpr OplKeyRow kOplKeys[] = {
#define OPL_KEY(Name, Access, Formatter, Text) {Text, OplAccess::Access, OplFormatter::Formatter},
#include "opl/vocabulary.def"
};

/// Texts in the order of OplWord.
inline constexpr std::string_view kOplWords[] = {
#define OPL_WORD(Name, Text) Text,
#include "opl/vocabulary.def"
};

/// Base keys in the order of OplRecordList.
inline constexpr std::string_view kOplRecordLists[] = {
#define OPL_RECORD_LIST(Name, Text) Text,
#include "opl/vocabulary.def"
};

/// Field names, each with its leading dot, in the order of OplRecordField.
inline constexpr std::string_view kOplRecordFields[] = {
#define OPL_RECORD_FIELD(Name, Text) Text,
#include "opl/vocabulary.def"
};

inline constexpr size_t kOplKeyCount = std::size(kOplKeys);
inline constexpr size_t kOplWordCount = std::size(kOplWords);

[[nodiscard]] constexpr const OplKeyRow& KeyRow(OplKey key) {
    return kOplKeys[static_cast<size_t>(key)];
}
[[nodiscard]] constexpr std::string_view KeyText(OplKey key) {
    return KeyRow(key).text;
}
[[nodiscard]] constexpr std::string_view WordText(OplWord word) {
    return kOplWords[static_cast<size_t>(word)];
}
[[nodiscard]] constexpr std::string_view RecordListText(OplRecordList list) {
    return kOplRecordLists[static_cast<size_t>(list)];
}
[[nodiscard]] constexpr std::string_view RecordFieldText(OplRecordField field) {
    return kOplRecordFields[static_cast<size_t>(field)];
}
