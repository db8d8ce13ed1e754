// The notation both ways.
#include "opl/readable_text.h"

#include "opl/value_escape.h"

namespace opl {
namespace {

bool IsPrintable(char c) {
    return c >= 0x20 && c <= 0x7E;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// The byte of the first two digits of `text`; nothing when they are not two digits.
std::optional<char> HexByte(std::string_view text) {
    if (text.size() < 2 || HexDigit(text[0]) < 0 || HexDigit(text[1]) < 0) return std::nullopt;
    return static_cast<char>(HexDigit(text[0]) * 16 + HexDigit(text[1]));
}

}  // namespace

void AppendHexByte(std::string& out, char byte) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    out += kDigits[value >> 4];
    out += kDigits[value & 15];
}

void AppendReadable(std::string& out, std::string_view bytes) {
    for (const char c : bytes) {
        if (c == '\\') {
            out += "\\\\";
        } else if (IsPrintable(c)) {
            out += c;
        } else if (const char shown = EscapeByte(c); IsPrintable(shown)) {
            out += '\\';
            out += shown;
        } else {
            out += "\\x";
            AppendHexByte(out, c);
        }
    }
}

std::optional<std::string> FromReadable(std::string_view text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        const char next = ++i < text.size() ? text[i] : '\0';
        if (next == '\\') {
            bytes += next;
        } else if (next == 'x') {
            const std::optional<char> byte = HexByte(text.substr(i + 1));
            if (!byte) return std::nullopt;
            bytes += *byte;
            i += 2;
        } else if (next != '\0' && kStructureCharacters.find(next) != std::string_view::npos) {
            bytes += EscapeByte(next);
        } else {
            return std::nullopt;
        }
    }
    return bytes;
}

std::optional<std::string> FromHex(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        if (text.front() == ' ') {
            text.remove_prefix(1);
            continue;
        }
        const std::optional<char> byte = HexByte(text);
        if (!byte) return std::nullopt;
        bytes += *byte;
        text.remove_prefix(2);
    }
    return bytes;
}

}  // namespace opl
