// How the seven characters that structure a message travel inside text values: as control codes.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace opl {

inline constexpr std::string_view kStructureCharacters = "#&,.;=?";
inline constexpr char kFirstEscapeCode = 0x19;

/// Maps a structure character to its code, the code to the character, and every other byte to itself; the
/// table is its own inverse.
inline constexpr std::array<char, 256> kValueEscapes = [] {
    std::array<char, 256> table{};
    for (size_t byte = 0; byte < table.size(); ++byte)
        table[byte] = static_cast<char>(byte);
    char code = kFirstEscapeCode;
    for (const char character : kStructureCharacters) {
        table[static_cast<unsigned char>(character)] = code;
        table[static_cast<unsigned char>(code)] = character;
        ++code;
    }
    return table;
}();

[[nodiscard]] constexpr char EscapeByte(char byte) {
    return kValueEscapes[static_cast<unsigned char>(byte)];
}

/// Appends `text` with every byte passed through the table: escapes what is plain, restores what is escaped.
inline void AppendEscaped(std::string& out, std::string_view text) {
    const size_t start = out.size();
    out.append(text);
    for (size_t i = start; i < out.size(); ++i)
        out[i] = EscapeByte(out[i]);
}

}  // namespace opl
