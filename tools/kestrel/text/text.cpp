#include "kestrel/text/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "kestrel/failure.h"

namespace cli {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct Utf8Form {
    unsigned char mask;  // of the bits that mark the lead byte
    unsigned char mark;
    int continuationBytes;
    char32_t smallest;  // anything below is an over-long form
};
constexpr std::array<Utf8Form, 4> kUtf8Forms = {{
    {0x80, 0x00, 0, 0x0},
    {0xE0, 0xC0, 1, 0x80},
    {0xF0, 0xE0, 2, 0x800},
    {0xF8, 0xF0, 3, 0x10000},
}};

constexpr bool IsSurrogate(char32_t point) {
    return point >= 0xD800 && point <= 0xDFFF;
}

// Takes one character off the front of `text`; none when the front is not UTF-8.
std::optional<char32_t> TakeUtf8(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const auto form = std::find_if(kUtf8Forms.begin(), kUtf8Forms.end(),
                                   [lead](const Utf8Form& row) { return (lead & row.mask) == row.mark; });
    if (form == kUtf8Forms.end() || text.size() <= static_cast<std::size_t>(form->continuationBytes))
        return {};
    char32_t point = lead & static_cast<unsigned char>(~form->mask);
    for (int i = 1; i <= form->continuationBytes; ++i) {
        const auto byte = static_cast<unsigned char>(text[static_cast<std::size_t>(i)]);
        if ((byte & 0xC0) != 0x80) return {};
        point = (point << 6) | (byte & 0x3F);
    }
    if (point < form->smallest || point > 0x10FFFF || IsSurrogate(point)) return {};
    text.remove_prefix(1 + static_cast<std::size_t>(form->continuationBytes));
    return point;
}

void AppendUtf8(std::string& out, char32_t point) {
    const auto form = std::find_if(kUtf8Forms.rbegin(), kUtf8Forms.rend(),
                                   [point](const Utf8Form& row) { return point >= row.smallest; });
    int shift = 6 * form->continuationBytes;
    out.push_back(static_cast<char>(form->mark | (point >> shift)));
    while (shift > 0) {
        shift -= 6;
        out.push_back(static_cast<char>(0x80 | ((point >> shift) & 0x3F)));
    }
}

constexpr bool IsPrintableAscii(unsigned char byte) {
    return byte >= 0x20 && byte <= 0x7E;
}

std::optional<unsigned> HexDigit(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    return {};
}

}  // namespace

std::optional<WideText> WideFromUtf8(std::string_view text) {
    WideText wide;
    while (!text.empty()) {
        const std::optional<char32_t> point = TakeUtf8(text);
        if (!point) return {};
        if (*point < 0x10000) {
            wide.push_back(static_cast<WCHAR>(*point));
        } else {
            wide.push_back(static_cast<WCHAR>(0xD800 + ((*point - 0x10000) >> 10)));
            wide.push_back(static_cast<WCHAR>(0xDC00 + ((*point - 0x10000) & 0x3FF)));
        }
    }
    return wide;
}

std::string Utf8FromWide(std::basic_string_view<WCHAR> text) {
    std::string utf8;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t point = static_cast<char16_t>(text[i]);
        const char32_t next = i + 1 < text.size() ? static_cast<char16_t>(text[i + 1]) : 0;
        if (point >= 0xD800 && point <= 0xDBFF && next >= 0xDC00 && next <= 0xDFFF) {
            point = 0x10000 + ((point - 0xD800) << 10) + (next - 0xDC00);
            ++i;
        } else if (IsSurrogate(point)) {
            point = kReplacement;
        }
        AppendUtf8(utf8, point);
    }
    return utf8;
}

WideText WideArgument(std::string_view text, std::string_view what) {
    std::optional<WideText> wide = WideFromUtf8(text);
    if (!wide) {
        throw UsageFailure(fmt::format("the {} is not UTF-8 text", what),
                           "use a terminal with a UTF-8 locale, such as LC_ALL=C.UTF-8");
    }
    return *std::move(wide);
}

std::optional<std::string> AnsiFromWide(const WideText& text) {
    if (text.empty()) return std::string();
    const int length = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string ansi(static_cast<std::size_t>(std::max(bytes, 0)), '\0');
    if (WideCharToMultiByte(CP_ACP, 0, text.data(), length, ansi.data(), bytes, nullptr, nullptr) <= 0)
        return {};

    // The way back tells a loss that the call itself does not report: a look-alike taken for the character.
    WideText again(text.size() + 1, 0);
    const int units = MultiByteToWideChar(CP_ACP, 0, ansi.data(), bytes, again.data(), length + 1);
    again.resize(static_cast<std::size_t>(std::max(units, 0)));
    return again == text ? std::optional(ansi) : std::nullopt;
}

std::string ReadableBytes(std::string_view bytes) {
    std::string readable;
    for (const char byte : bytes) {
        if (byte == '\\') {
            readable += "\\\\";
        } else if (IsPrintableAscii(static_cast<unsigned char>(byte))) {
            readable += byte;
        } else {
            readable += fmt::format("\\x{:02X}", static_cast<unsigned char>(byte));
        }
    }
    return readable;
}

std::optional<std::string> BytesFromReadable(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        if (text.front() != '\\') {
            bytes += text.front();
            text.remove_prefix(1);
        } else if (text.starts_with("\\\\")) {
            bytes += '\\';
            text.remove_prefix(2);
        } else {
            const bool whole = text.starts_with("\\x") && text.size() >= 4;
            const std::optional<unsigned> high = whole ? HexDigit(text[2]) : std::nullopt;
            const std::optional<unsigned> low = whole ? HexDigit(text[3]) : std::nullopt;
            if (!high || !low) return {};
            bytes += static_cast<char>(*high << 4 | *low);
            text.remove_prefix(4);
        }
    }
    return bytes;
}

std::string HexDump(std::string_view bytes) {
    constexpr std::size_t kPerLine = 16;
    std::string dump;
    for (std::size_t offset = 0; offset < bytes.size(); offset += kPerLine) {
        std::string digits;
        std::string characters;
        for (const char byte : bytes.substr(offset, kPerLine)) {
            digits += fmt::format("{:02x} ", static_cast<unsigned char>(byte));
            characters += IsPrintableAscii(static_cast<unsigned char>(byte)) ? byte : '.';
        }
        dump += fmt::format("{:08x}  {:<{}} {}\n", offset, digits, kPerLine * 3, characters);
    }
    return dump;
}

std::string ForTerminal(std::string_view utf8) {
    std::string safe;
    while (!utf8.empty()) {
        const std::string_view before = utf8;
        const std::optional<char32_t> point = TakeUtf8(utf8);
        const bool isControl = !point || *point < 0x20 || (*point >= 0x7F && *point < 0xA0);
        if (!point) utf8.remove_prefix(1);
        const std::string_view taken = before.substr(0, before.size() - utf8.size());
        if (!isControl) {
            safe += taken;
        } else {
            safe += fmt::format("\\x{:02X}", point ? static_cast<unsigned>(*point)
                                                   : static_cast<unsigned char>(taken.front()));
        }
    }
    return safe;
}

std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

}  // namespace cli
