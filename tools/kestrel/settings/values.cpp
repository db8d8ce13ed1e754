// One reader and one writer for each form.
#include "kestrel/settings/values.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "kestrel/failure.h"
#include "kestrel/settings/settings.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

struct BoolWord {
    std::string_view word;
    bool value;
};
constexpr std::array<BoolWord, 8> kBoolWords = {{{"yes", true},
                                                 {"on", true},
                                                 {"true", true},
                                                 {"1", true},
                                                 {"no", false},
                                                 {"off", false},
                                                 {"false", false},
                                                 {"0", false}}};

std::optional<int64_t> WholeNumber(std::string_view written) {
    if (written.starts_with('+')) written.remove_prefix(1);
    int64_t number = 0;
    const char* const end = written.data() + written.size();
    const auto [stop, error] = std::from_chars(written.data(), end, number);
    if (error != std::errc() || stop != end) return {};
    return number;
}

[[noreturn]] void Refuse(const catalogue::Row& row, std::string_view written, std::string_view reason) {
    throw ValueFailure(fmt::format("{} cannot be \"{}\": {}", row.name, written, reason),
                       fmt::format("allowed: {}", AllowedValues(row)));
}

Value ParseBool(const catalogue::Row& row, std::string_view written) {
    const std::string lower = LowerAscii(written);
    const auto found = std::find_if(kBoolWords.begin(), kBoolWords.end(),
                                    [&lower](const BoolWord& entry) { return entry.word == lower; });
    if (found == kBoolWords.end()) Refuse(row, written, "it is neither yes nor no");
    return {found->value ? 1 : 0, {}};
}

Value ParseInteger(const catalogue::Row& row, std::string_view written) {
    const std::optional<int64_t> number = WholeNumber(written);
    if (!number) Refuse(row, written, "it is not a whole number");
    const IntegerRange range = WritableRange(row);
    if (*number < range.lowest || *number > range.highest) Refuse(row, written, "it is out of range");
    return {*number, {}};
}

Value ParseWord(const catalogue::Row& row, std::string_view written) {
    const std::string lower = LowerAscii(written);
    const std::optional<int64_t> number = WholeNumber(written);
    for (const catalogue::EnumEntry& entry : row.words) {
        // A word wins over a number: some words begin with a digit.
        if (LowerAscii(entry.name) == lower) return {entry.value, {}};
    }
    for (const catalogue::EnumEntry& entry : row.words) {
        if (number == int64_t{entry.value}) return {entry.value, {}};
    }
    Refuse(row, written, "it is none of the words");
}

Value ParseAddress(const catalogue::Row& row, std::string_view written) {
    const std::optional<uint32_t> address = ParseDottedAddress(written);
    if (!address) Refuse(row, written, "it is not an address of four numbers");
    return {*address, {}};
}

Value ParseText(const catalogue::Row& row, std::string_view written) {
    const std::optional<WideText> wide = WideFromUtf8(written);
    if (!wide) Refuse(row, ForTerminal(written), "it is not UTF-8 text");
    // Control codes carry the command language's own characters on the wire and would come back as those.
    if (ForTerminal(written) != written) Refuse(row, ForTerminal(written), "it holds control characters");
    if (wide->size() > row.MaxCharacters()) {
        Refuse(row, written, fmt::format("it has {} characters", wide->size()));
    }
    if (!AnsiFromWide(*wide)) Refuse(row, written, "the system's code page lacks some of its characters");
    return {0, std::string(written)};
}

std::string DottedAddress(int64_t packed) {
    return fmt::format("{}.{}.{}.{}", packed & 0xFF, (packed >> 8) & 0xFF, (packed >> 16) & 0xFF,
                       (packed >> 24) & 0xFF);
}

const catalogue::EnumEntry* WordOf(const catalogue::Row& row, int64_t number) {
    for (const catalogue::EnumEntry& entry : row.words) {
        if (entry.value == number) return &entry;
    }
    return nullptr;
}

}  // namespace

std::optional<uint32_t> ParseDottedAddress(std::string_view written) {
    uint32_t packed = 0;
    for (int i = 0; i < 4; ++i) {
        uint8_t part = 0;
        const char* const end = written.data() + written.size();
        const auto [stop, error] = std::from_chars(written.data(), end, part);
        const bool wellEnded = i == 3 ? stop == end : stop != end && *stop == '.';
        // A leading zero is read as octal by some programs and as decimal by others: too risky for an
        // address.
        const bool leadingZero = stop - written.data() > 1 && written.front() == '0';
        if (error != std::errc() || !wellEnded || leadingZero) return {};
        packed |= uint32_t{part} << (8 * i);
        written.remove_prefix(static_cast<size_t>(stop - written.data()) + (i == 3 ? 0 : 1));
    }
    return packed;
}

Value ParseValue(const catalogue::Row& row, std::string_view written) {
    switch (FormOf(row)) {
        case ValueForm::Bool:
            return ParseBool(row, written);
        case ValueForm::Integer:
            return ParseInteger(row, written);
        case ValueForm::Word:
            return ParseWord(row, written);
        case ValueForm::Text:
            return ParseText(row, written);
        case ValueForm::Address:
            return ParseAddress(row, written);
    }
    return {};
}

std::string FormatValue(const catalogue::Row& row, const Value& value) {
    switch (FormOf(row)) {
        case ValueForm::Bool:
            return value.number != 0 ? "yes" : "no";
        case ValueForm::Integer:
            return std::to_string(value.number);
        case ValueForm::Word:
            if (const catalogue::EnumEntry* const entry = WordOf(row, value.number)) return entry->name;
            return std::to_string(value.number);
        case ValueForm::Text:
            return value.text;
        case ValueForm::Address:
            return DottedAddress(value.number);
    }
    return {};
}

tools::Json JsonValue(const catalogue::Row& row, const Value& value) {
    switch (FormOf(row)) {
        case ValueForm::Bool:
            return value.number != 0;
        case ValueForm::Integer:
            return value.number;
        default:
            return FormatValue(row, value);
    }
}

}  // namespace cli
