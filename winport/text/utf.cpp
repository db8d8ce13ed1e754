#include "winport/text/utf.h"

namespace winport {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void AppendUtf8(std::string& out, char32_t code) {
    const auto tail = [code](int shift) { return static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += {static_cast<char>(0xC0 | (code >> 6)), tail(0)};
    } else if (code < 0x10000) {
        out += {static_cast<char>(0xE0 | (code >> 12)), tail(6), tail(0)};
    } else {
        out += {static_cast<char>(0xF0 | (code >> 18)), tail(12), tail(6), tail(0)};
    }
}

void AppendUtf16(std::u16string& out, char32_t code) {
    if (code < 0x10000) {
        out += static_cast<char16_t>(code);
    } else {
        out += static_cast<char16_t>(0xD7C0 + (code >> 10));
        out += static_cast<char16_t>(0xDC00 | (code & 0x3FF));
    }
}

// What a lead byte says: how many bytes follow, its own bits, and the smallest code that needs that length.
struct Lead {
    unsigned char mask;
    unsigned char pattern;
    int following;
    char32_t smallest;
};
constexpr Lead kLeads[] = {
    {0x80, 0x00, 0, 0}, {0xE0, 0xC0, 1, 0x80}, {0xF0, 0xE0, 2, 0x800}, {0xF8, 0xF0, 3, 0x10000}};

// Takes one character from the front of `text`; of a malformed sequence its first byte alone.
char32_t TakeUtf8(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::string_view rest = text.substr(1);
    text = rest;
    for (const Lead& lead : kLeads) {
        if ((first & lead.mask) != lead.pattern) continue;
        if (rest.size() < static_cast<std::size_t>(lead.following)) return kReplacement;
        char32_t code = first & static_cast<unsigned char>(~lead.mask);
        for (int i = 0; i < lead.following; ++i) {
            const auto byte = static_cast<unsigned char>(rest[i]);
            if ((byte & 0xC0) != 0x80) return kReplacement;
            code = code << 6 | (byte & 0x3F);
        }
        const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
        if (code < lead.smallest || code > 0x10FFFF || surrogate) return kReplacement;
        text = rest.substr(lead.following);
        return code;
    }
    return kReplacement;
}

}  // namespace

std::string ToUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t code = text[i];
        if (IsHighSurrogate(code) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            code = 0x10000 + ((code - 0xD800) << 10) + (text[++i] - 0xDC00);
        } else if (IsHighSurrogate(code) || IsLowSurrogate(code)) {
            code = kReplacement;
        }
        AppendUtf8(out, code);
    }
    return out;
}

std::u16string FromUtf8(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    while (!text.empty())
        AppendUtf16(out, TakeUtf8(text));
    return out;
}

std::string ToHostPath(std::u16string_view path) {
    std::string text = ToUtf8(path);
    for (char& character : text) {
        if (character == '\\') character = '/';
    }
    return text;
}

}  // namespace winport
