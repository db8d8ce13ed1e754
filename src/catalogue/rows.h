// Every setting of the printer as a row that programs can walk, also while they are compiled. Knows no
// device; made from settings.def, whose columns these are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "catalogue/value_tables.h"
#include "opl/vocabulary.h"

namespace catalogue {

/// The value's type in the exported functions. Numbers have the width their names say; an enumeration is a
/// uint32_t; a text is zero-terminated UTF-16; an address is read as four bytes in the order of the wire, and
/// set as one uint32_t whose lowest byte goes first.
/// An S32 getter is declared with uint32_t*: the bits are those of an int32_t.
enum class Type : uint8_t { Bool, U8, S8, U16, U32, S32, Enum, Text, Address, Percent = U8 };

/// As people are told it.
[[nodiscard]] constexpr std::string_view TypeText(Type type) {
    constexpr std::string_view kTexts[] = {"bool", "u8",   "s8",   "u16",    "u32",
                                           "s32",  "enum", "text", "address"};
    return kTexts[static_cast<size_t>(type)];
}

/// A command can only be set, and the printer acts at once.
enum class Access : uint8_t { ReadWrite, ReadOnly, WriteOnly, Command };

enum class Privacy : uint8_t { Public, Secret };

struct Row {
    std::string_view name;       // fax.redials
    std::optional<opl::Key> id;  // none when the printer is not asked
    std::string_view key;        // its text: DeviceSettings.Fax.Redials; empty when there is none
    Access access;
    const char* getter;  // exported name; null when the setting can only be set
    const char* setter;  // exported name; null when the setting can only be read
    Type readType;
    Type writeType;
    int32_t index;                     // first argument of both functions; negative when they take none
    std::string_view initial;          // the printer's first value, as people write it
    int64_t lowest;                    // of a number: what the printer takes
    int64_t highest;                   //
    std::span<const EnumEntry> words;  // of an enumeration, without the end mark
    uint32_t bufferBytes;              // of a text: what the getter may write, terminator included
    Privacy privacy;
    std::string_view about;

    [[nodiscard]] constexpr bool CanRead() const { return getter != nullptr; }
    [[nodiscard]] constexpr bool CanWrite() const { return setter != nullptr; }
    [[nodiscard]] constexpr bool IsSecret() const { return privacy == Privacy::Secret; }
    /// Of a text: what can be read back.
    [[nodiscard]] constexpr uint32_t MaxCharacters() const { return bufferBytes / 2 - 1; }
};

namespace detail {

inline constexpr int32_t kNoIndex = -1;

constexpr const char* GetterName(Access access, const char* getter) {
    return access == Access::WriteOnly || access == Access::Command ? nullptr : getter;
}

constexpr const char* SetterName(Access access, const char* setter, const char* command) {
    if (access == Access::Command) return command;
    return access == Access::ReadOnly ? nullptr : setter;
}

/// The words of a table without its end mark.
template <size_t kSize>
constexpr std::span<const EnumEntry> WordsOf(const EnumEntry (&table)[kSize]) {
    return {table, kSize - 1};
}

// clang-format off
inline constexpr Row kRows[] = {
#define ROW(base, name, access, initial, read, write, lowest, highest, words, bytes, privacy, about)\
    {name, opl::Key::base, opl::KeyText(opl::Key::base), Access::access,                            \
     GetterName(Access::access, "Get" #base), SetterName(Access::access, "Set" #base, #base),       \
     Type::read, Type::write, kNoIndex, initial, lowest, highest, WordsOf(k##words), bytes,         \
     Privacy::privacy, about},
#define INDEXED(base, index, name, initial, bytes, privacy, about)                                  \
    {name, opl::Key::base##index, opl::KeyText(opl::Key::base##index), Access::ReadWrite,           \
     "Get" #base, "Set" #base,                                                                      \
     Type::Text, Type::Text, index, initial, 0, 0, {}, bytes,                                       \
     Privacy::privacy, about},
#define CONSTANT(base, name, type, about)                                                           \
    {name, {}, {}, Access::ReadOnly,                                                                \
     "Get" #base, nullptr,                                                                          \
     Type::type, Type::type, kNoIndex, "0", 0, 0, {}, 0,                                            \
     Privacy::Public, about},
#include "catalogue/settings.def"
};
// clang-format on

}  // namespace detail

/// All rows, family by family. They live as long as the program.
[[nodiscard]] constexpr std::span<const Row> Rows() {
    return detail::kRows;
}

/// Whether a text ends in the key of a setting that is nobody else's business, as a message does in front of
/// its value.
[[nodiscard]] constexpr bool EndsInSecretKey(std::string_view text) {
    for (const Row& row : Rows())
        if (row.IsSecret() && text.ends_with(row.key)) return true;
    return false;
}

}  // namespace catalogue
