#include "winport/profile/profile_text.h"

#include <windows.h>

#include "winport/text/case_fold.h"

namespace winport {

namespace {

constexpr std::u16string_view kLineEnds = u"\r\n";
constexpr auto kNone = std::u16string_view::npos;

std::u16string DecodeUtf16(std::string_view bytes, bool bigEndian) {
    std::u16string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto high = static_cast<unsigned char>(bytes[bigEndian ? i : i + 1]);
        const auto low = static_cast<unsigned char>(bytes[bigEndian ? i + 1 : i]);
        text += static_cast<char16_t>(high << 8 | low);
    }
    return text;
}

std::u16string DecodeAnsi(std::string_view bytes) {
    if (bytes.empty()) return {};  // of which a conversion would be an error
    const int length = static_cast<int>(bytes.size());
    const int count = MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, nullptr, 0);
    std::u16string text(count, u'\0');
    MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, text.data(), count);
    return text;
}

// A line ends at CR, LF or both; the empty line that CR LF leaves between its two characters means nothing.
std::u16string_view TakeLine(std::u16string_view& lines) {
    const std::size_t end = lines.find_first_of(kLineEnds);
    const std::u16string_view line = lines.substr(0, end);
    lines.remove_prefix(end == kNone ? lines.size() : end + 1);
    return TrimBlanks(line);
}

// The name in "[name] anything"; nothing for a line that is no header, such as "[name".
std::optional<std::u16string_view> SectionName(std::u16string_view line) {
    if (line.empty() || line.front() != u'[') return std::nullopt;
    const std::size_t end = line.find(u']');
    if (end == kNone) return std::nullopt;
    return TrimBlanks(line.substr(1, end - 1));
}

// A key or a value ends at a NUL.
std::u16string_view TextOf(std::u16string_view part) {
    return TrimBlanks(part.substr(0, part.find(u'\0')));
}

}  // namespace

std::u16string DecodeProfile(std::string_view bytes) {
    if (bytes.substr(0, 2) == "\xFF\xFE") return DecodeUtf16(bytes.substr(2), false);
    if (bytes.substr(0, 2) == "\xFE\xFF") return DecodeUtf16(bytes.substr(2), true);
    return DecodeAnsi(bytes);
}

std::u16string_view TrimBlanks(std::u16string_view text) {
    constexpr std::u16string_view kBlanks = u" \t\v\f\x1A";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == kNone) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<std::u16string_view> FindSection(std::u16string_view text, std::u16string_view name) {
    const std::u16string_view wanted = TrimBlanks(name);
    bool inside = false;
    std::u16string_view body;
    while (!text.empty()) {
        const std::u16string_view atLine = text;
        const auto header = SectionName(TakeLine(text));
        if (!header) continue;
        if (inside) return body.substr(0, body.size() - atLine.size());
        inside = EqualsWithoutCase(*header, wanted);
        body = text;
    }
    if (!inside) return std::nullopt;
    return body;
}

std::optional<ProfileEntry> NextEntry(std::u16string_view& lines) {
    while (!lines.empty()) {
        const std::u16string_view line = TakeLine(lines);
        if (line.empty() || line.front() == u';') continue;
        const std::size_t equals = line.find(u'=');
        ProfileEntry entry = {TextOf(line.substr(0, equals)), {}, equals != kNone};
        if (entry.hasEquals)
            entry.value = TextOf(line.substr(equals + 1));
        else if (entry.key.empty())
            continue;
        return entry;
    }
    return std::nullopt;
}

}  // namespace winport
