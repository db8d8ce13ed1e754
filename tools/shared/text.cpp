// UTF-8 is taken apart by hand: the tools are the same on both systems, whose own calls are not.
#include "shared/text.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>

namespace tools {
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
    if (form == kUtf8Forms.end() || text.size() <= static_cast<size_t>(form->continuationBytes)) return {};
    char32_t point = lead & static_cast<unsigned char>(~form->mask);
    for (int i = 1; i <= form->continuationBytes; ++i) {
        const auto byte = static_cast<unsigned char>(text[static_cast<size_t>(i)]);
        if ((byte & 0xC0) != 0x80) return {};
        point = (point << 6) | (byte & 0x3F);
    }
    if (point < form->smallest || point > 0x10FFFF || IsSurrogate(point)) return {};
    text.remove_prefix(1 + static_cast<size_t>(form->continuationBytes));
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
    for (size_t i = 0; i < text.size(); ++i) {
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

namespace {

template <typename Letter>
std::basic_string<Letter> Lower(std::basic_string_view<Letter> text) {
    std::basic_string<Letter> lower(text);
    for (Letter& letter : lower)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<Letter>(letter - 'A' + 'a');
    return lower;
}

}  // namespace

std::string LowerAscii(std::string_view text) {
    return Lower(text);
}
WideText LowerAscii(WideView text) {
    return Lower(text);
}

}  // namespace tools
