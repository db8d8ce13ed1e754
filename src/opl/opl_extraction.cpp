// Reading values out of one message. Views of the message are passed around; only outputs are copied.
#include <algorithm>
#include <limits>
#include <optional>

#include "opl/byte_scan.h"
#include "opl/decimal.h"
#include "opl/opl_parser.h"
#include "opl/value_escape.h"

namespace opl {
namespace {

struct BoolWord {
    std::string_view word;
    bool anyCase;
    uint8_t value;
};

constexpr BoolWord kBoolWords[] = {
    {"TRUE", false, 1},  {"YES", true, 1}, {"ON", false, 1},  {"ENABLE", false, 1},
    {"FALSE", false, 0}, {"NO", true, 0},  {"OFF", false, 0}, {"DISABLE", false, 0},
};

constexpr bool IsDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

constexpr char Upper(char byte) {
    return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 32) : byte;
}

bool EqualsInAnyCase(std::string_view text, std::string_view upperWord) {
    return std::ranges::equal(text, upperWord, {}, Upper);
}

size_t FindDelimiter(std::string_view text) {
    return FindFirst(text.data(), text.size(), kDelimiter);
}

/// Offset of `wanted` when it comes before any delimiter, npos otherwise.
template <char wanted>
size_t FindBeforeDelimiter(std::string_view text) {
    const size_t found =
        FindFirst(text.data(), text.size(), [](auto byte) { return byte == wanted || kDelimiter(byte); });
    return found < text.size() && text[found] == wanted ? found : std::string_view::npos;
}

std::string_view SkipDigits(std::string_view text) {
    size_t digits = 0;
    while (digits < text.size() && IsDigit(text[digits]))
        ++digits;
    return text.substr(digits);
}

/// The value of the first item, still escaped.
std::optional<std::string_view> FindValue(std::string_view message) {
    const size_t equals = FindBeforeDelimiter<'='>(message);
    if (equals == std::string_view::npos) return std::nullopt;
    const std::string_view value = message.substr(equals + 1);
    const size_t end = FindDelimiter(value);
    if (end == value.size()) return std::nullopt;
    return value.substr(0, end);
}

std::optional<std::string_view> FindKey(std::string_view message) {
    const std::string_view behindDigits = SkipDigits(message);
    std::string_view key = behindDigits.starts_with(',') ? behindDigits.substr(1) : message;
    const size_t end = FindFirst(key.data(), key.size(),
                                 [](auto byte) { return byte == '=' || byte == '#' || kDelimiter(byte); });
    if (end == key.size()) return std::nullopt;
    key = key.substr(0, end);
    while (key.starts_with(' '))
        key.remove_prefix(1);
    while (key.ends_with(' '))
        key.remove_suffix(1);
    return key;
}

/// The block of the first item, without ever trusting its count.
std::optional<std::string_view> FindBinary(std::string_view message) {
    const size_t sign = FindBeforeDelimiter<'#'>(message);
    // The count has one digit at least, so "=" is looked for from the second byte on.
    if (sign == std::string_view::npos || message.size() - sign < 2) return std::nullopt;
    const std::string_view count = message.substr(sign + 1);
    const size_t equals = FindBeforeDelimiter<'='>(count.substr(1));
    if (equals == std::string_view::npos) return std::nullopt;
    const std::string_view bytes = count.substr(equals + 2);
    const uint32_t length = LeadingCount(count);
    if (length > bytes.size()) return std::nullopt;
    return bytes.substr(0, length);
}

constexpr auto kEndsItem = [](auto byte) { return byte == '#' || kDelimiter(byte); };

// What few items need is kept out of the loop over all of them.

/// Closes an item that no delimiter follows.
[[gnu::cold]] std::string_view ClosedCopy(std::string_view item, ListItems& items) {
    return items.copies.emplace_front(item) += ';';
}

/// Cuts an item in which "#" comes before any delimiter. Returns where the next one starts.
[[gnu::cold]] size_t CutBlockItem(std::string_view text, size_t start, ListItems& items) {
    const std::string_view rest = text.substr(start);
    const auto block = FindBinary(rest);
    const size_t length = block ? rest.find('=') + 1 + block->size() : FindDelimiter(rest);
    const bool closed = length < rest.size() && OPLParser::IsDelimiter(rest[length]);
    items.views.push_back(closed ? rest.substr(0, length + 1) : ClosedCopy(rest.substr(0, length), items));
    return start + length + 1;
}

}  // namespace

bool OPLParser::GetResponseNumber(std::string_view message, uint32_t& number) {
    number = 0;
    if (!SkipDigits(message).starts_with(',')) return false;
    number = LeadingDecimal(message);
    return true;
}

bool OPLParser::GetKey(std::string_view message, std::string_view& key) {
    const auto found = FindKey(message);
    key = found.value_or(std::string_view{});
    return found.has_value();
}

bool OPLParser::GetValue(std::string_view message, std::string& value) {
    value.clear();
    const auto found = FindValue(message);
    if (found) AppendEscaped(value, *found);
    return found.has_value();
}

// Numbers and the boolean words hold no byte of the escape table, so the escaped text serves as it is.

bool OPLParser::GetIntValue(std::string_view message, int32_t& value) {
    value = 0;
    const auto text = FindValue(message);
    if (!text) return false;
    if (text->empty() || *text == "-") return true;

    const char* const end = text->data() + text->size();
    if (text->size() >= 2 && EqualsInAnyCase(text->substr(0, 2), "0X")) {
        uint32_t bits = 0;
        const auto scan = std::from_chars(text->data() + 2, end, bits, 16);
        if (scan.ptr != end || scan.ec == std::errc::invalid_argument) return false;
        if (scan.ec == std::errc::result_out_of_range) bits = std::numeric_limits<uint32_t>::max();
        value = static_cast<int32_t>(bits);
        return true;
    }

    const auto scan = std::from_chars(text->data(), end, value);
    if (scan.ptr == end && scan.ec == std::errc{}) return true;
    value = 0;
    if (scan.ptr != end || scan.ec != std::errc::result_out_of_range) return false;
    value = text->front() == '-' ? std::numeric_limits<int32_t>::min() : std::numeric_limits<int32_t>::max();
    return true;
}

bool OPLParser::GetBoolValue(std::string_view message, uint8_t& value) {
    value = 0;
    const auto text = FindValue(message);
    if (!text) return false;
    for (const BoolWord& row : kBoolWords) {
        if (*text != row.word && !(row.anyCase && EqualsInAnyCase(*text, row.word))) continue;
        value = row.value;
        return true;
    }
    return false;
}

bool OPLParser::GetBinaryValue(std::string_view message, std::vector<uint8_t>& bytes) {
    bytes.clear();
    const auto block = FindBinary(message);
    if (block) bytes.assign(block->begin(), block->end());
    return block.has_value();
}

bool OPLParser::SplitList(std::string_view message, ListItems& items) {
    items.views.clear();
    items.copies.clear();
    const size_t comma = FindBeforeDelimiter<','>(message);
    if (comma == std::string_view::npos) return false;
    const std::string_view text = message.substr(comma + 1);
    size_t start = 0;
    ForEachHit(text, kEndsItem, [&](size_t end) {
        if (text[end] == '#') return start = CutBlockItem(text, start, items);
        if (end > start) {
            items.views.push_back(text.substr(start, end + 1 - start));
        } else if (start == 0 || text[start] != '&') {
            return start = text.size();  // an empty item ends the list; only further "&" are passed over
        }
        return start = end + 1;
    });
    if (start < text.size()) items.views.push_back(ClosedCopy(text.substr(start), items));
    return !items.views.empty();
}

bool OPLParser::GetIndex(std::string_view message, uint32_t& index) {
    index = 0;
    const std::string_view key = FindKey(message).value_or(std::string_view{});
    const size_t bracket = key.find('[');
    if (bracket == std::string_view::npos) return false;
    const std::string_view digits = key.substr(bracket + 1);
    if (digits.empty() || !IsDigit(digits.front())) return false;
    index = LeadingDecimal(digits);
    return true;
}

}  // namespace opl
