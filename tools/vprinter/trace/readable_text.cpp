#include "vprinter/trace/readable_text.h"

#include <fmt/format.h>

#include <iterator>

#include "opl/value_escape.h"

namespace vprinter {
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

void AppendReadable(std::string& out, std::string_view bytes) {
    for (const char c : bytes) {
        if (c == '\\') {
            out += "\\\\";
        } else if (IsPrintable(c)) {
            out += c;
        } else if (const char shown = opl::EscapeByte(c); IsPrintable(shown)) {
            out += '\\';
            out += shown;
        } else {
            fmt::format_to(std::back_inserter(out), "\\x{:02X}", static_cast<uint8_t>(c));
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
        } else if (next != '\0' && opl::kStructureCharacters.find(next) != std::string_view::npos) {
            bytes += opl::EscapeByte(next);
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

}  // namespace vprinter
