// What is asked of every row. There is nothing here to run: a table that breaks one of these does not
// compile.
#include <algorithm>
#include <utility>

#include "catalogue/rows.h"

namespace catalogue {
namespace {

/// The key can be asked and set where the row has a getter and a setter, and nowhere else.
constexpr bool AccessAgrees(Access access, opl::Key key) {
    const bool reads = access == Access::ReadWrite || access == Access::ReadOnly;
    return opl::RowOf(key).CanQuery() == reads && opl::RowOf(key).CanSet() == (access != Access::ReadOnly);
}

/// A setter of this type can be written in the form that the key's row in vocabulary.def names.
constexpr bool FormatterAgrees(Type type, opl::Key key) {
    const opl::Formatter formatter = opl::RowOf(key).formatter;
    switch (type) {
        case Type::Bool:
            return formatter == opl::Formatter::YesNoValue || formatter == opl::Formatter::TrueFalseValue;
        case Type::U8:
            return formatter == opl::Formatter::IntValue || formatter == opl::Formatter::ByteValue;
        case Type::S8:
            return formatter == opl::Formatter::IntValue || formatter == opl::Formatter::SignedByteValue;
        case Type::U16:
            return formatter == opl::Formatter::IntValue || formatter == opl::Formatter::WordValue;
        case Type::U32:
        case Type::S32:
            return formatter == opl::Formatter::IntValue;
        case Type::Enum:
        case Type::Text:
            return formatter == opl::Formatter::TextValue;
        case Type::Address:
            return formatter == opl::Formatter::AddressValue;
    }
    return false;
}

constexpr bool Holds(Type type, int64_t number) {
    switch (type) {
        case Type::U8:
            return std::in_range<uint8_t>(number);
        case Type::S8:
            return std::in_range<int8_t>(number);
        case Type::U16:
            return std::in_range<uint16_t>(number);
        case Type::U32:
            return std::in_range<uint32_t>(number);
        case Type::S32:
            return std::in_range<int32_t>(number);
        default:
            return true;
    }
}

/// The type holds what the printer takes. A text's buffer is of whole units, a terminator and one more at
/// least.
constexpr bool LimitsFit(Type type, int64_t lowest, int64_t highest, uint32_t bytes) {
    if (type == Type::Text) return bytes % 2 == 0 && bytes > 2;
    return lowest <= highest && Holds(type, lowest) && Holds(type, highest);
}

/// Takes a decimal number off the front; false when there is none or it has more than nine digits.
constexpr bool TakeNumber(std::string_view& text, int64_t& number) {
    constexpr size_t kMaxDigits = 9;
    const bool negative = text.starts_with('-');
    text.remove_prefix(negative ? 1 : 0);
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    number = 0;
    for (const char digit : text.substr(0, digits))
        number = number * 10 + (digit - '0');
    if (negative) number = -number;
    text.remove_prefix(digits);
    return digits > 0 && digits <= kMaxDigits;
}

constexpr bool IsNumberWithin(std::string_view text, int64_t lowest, int64_t highest) {
    int64_t number = 0;
    return TakeNumber(text, number) && text.empty() && lowest <= number && number <= highest;
}

constexpr bool IsAddress(std::string_view text) {
    for (int parts = 4; parts > 0; --parts) {
        int64_t part = 0;
        if (!TakeNumber(text, part) || part < 0 || part > 255) return false;
        if (parts > 1 && !text.starts_with('.')) return false;
        text.remove_prefix(parts > 1 ? 1 : 0);
    }
    return text.empty();
}

/// The printer takes its own first value.
constexpr bool InitialFits(Type type, std::string_view initial, int64_t lowest, int64_t highest,
                           std::span<const EnumEntry> words, uint32_t bytes) {
    switch (type) {
        case Type::Bool:
            return initial == "YES" || initial == "NO";
        case Type::Enum:
            return std::ranges::any_of(words, [&](const EnumEntry& word) { return initial == word.name; });
        case Type::Text:
            return initial.size() <= bytes / 2 - 1;
        case Type::Address:
            return IsAddress(initial);
        default:
            return IsNumberWithin(initial, lowest, highest);
    }
}

#define ROW(base, name, access, initial, read, write, lowest, highest, words, bytes, privacy, about)        \
    static_assert(AccessAgrees(Access::access, opl::Key::base), name ": its key is read or set otherwise"); \
    static_assert(Access::access == Access::ReadOnly || FormatterAgrees(Type::write, opl::Key::base),       \
                  name ": the formatter of its key does not write this type");                              \
    static_assert(LimitsFit(Type::read, lowest, highest, bytes),                                            \
                  name ": its type does not hold its limits");                                              \
    static_assert(LimitsFit(Type::write, lowest, highest, bytes),                                           \
                  name ": its type does not hold its limits");                                              \
    static_assert(InitialFits(Type::read, initial, lowest, highest, detail::WordsOf(k##words), bytes),      \
                  name ": it does not take its initial value");
#define INDEXED(base, index, name, initial, bytes, privacy, about) \
    ROW(base##index, name, ReadWrite, initial, Text, Text, 0, 0, NoWords, bytes, privacy, about)
#include "catalogue/settings.def"

template <auto kColumn>
constexpr bool IsUnique() {
    for (auto row = Rows().begin(); row != Rows().end(); ++row)
        if (std::find_if(row + 1, Rows().end(), [&](const Row& other) {
                return (other.*kColumn) == (*row).*kColumn;
            }) != Rows().end())
            return false;
    return true;
}
static_assert(IsUnique<&Row::name>(), "two settings have one name");
static_assert(IsUnique<&Row::key>(), "two settings have one key");

constexpr bool IsWellNamed(const Row& row) {
    const auto fits = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '-';
    };
    return row.name.find('.') != row.name.npos && std::ranges::all_of(row.name, fits) && !row.about.empty();
}
static_assert(std::ranges::all_of(Rows(), IsWellNamed),
              "a name is family and setting in lower case, and every row says what it is about");

/// As many numbers as words, from 0 on, and no word or number twice.
constexpr bool IsOneToOne(std::span<const EnumEntry> words) {
    for (const EnumEntry& word : words) {
        const auto same = [&](const EnumEntry& other) {
            return other.value == word.value || std::string_view(other.name) == word.name;
        };
        if (word.value >= words.size() || std::ranges::count_if(words, same) != 1) return false;
    }
    return true;
}
static_assert(std::ranges::all_of(Rows(), [](const Row& row) { return IsOneToOne(row.words); }),
              "the words and the numbers of a table do not lead to each other");
static_assert(IsOneToOne(detail::WordsOf(kAddressType)));

}  // namespace
}  // namespace catalogue
