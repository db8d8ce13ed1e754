// Names matched and told apart, ranges and forms derived from the row.
#include "kestrel/settings/settings.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>

#include "kestrel/failure.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

template <typename Number>
constexpr IntegerRange RangeOf() {
    return {std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max()};
}

struct TypeRow {
    catalogue::Type type;
    ValueForm form;
    IntegerRange range;  // of integers
};
constexpr std::array<TypeRow, 9> kTypes = {{
    {catalogue::Type::Bool, ValueForm::Bool, {}},
    {catalogue::Type::U8, ValueForm::Integer, RangeOf<uint8_t>()},
    {catalogue::Type::S8, ValueForm::Integer, RangeOf<int8_t>()},
    {catalogue::Type::U16, ValueForm::Integer, RangeOf<uint16_t>()},
    {catalogue::Type::U32, ValueForm::Integer, RangeOf<uint32_t>()},
    {catalogue::Type::S32, ValueForm::Integer, RangeOf<int32_t>()},
    {catalogue::Type::Enum, ValueForm::Word, {}},
    {catalogue::Type::Text, ValueForm::Text, {}},
    {catalogue::Type::Address, ValueForm::Address, {}},
}};

const TypeRow& TypeOf(catalogue::Type type) {
    return *std::find_if(kTypes.begin(), kTypes.end(),
                         [type](const TypeRow& row) { return row.type == type; });
}

// Insertions, deletions and replacements of one letter that lead from one text to the other.
size_t EditDistance(std::string_view from, std::string_view to) {
    std::vector<size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < from.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i + 1;
        for (size_t j = 0; j < to.size(); ++j) {
            const size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, replaced});
        }
    }
    return row.back();
}

std::string_view LastPart(std::string_view name) {
    return name.substr(name.rfind('.') + 1);
}

// Small for a slip of the fingers, and for the right word without or with another family: "redials".
size_t Remoteness(std::string_view written, std::string_view name) {
    return std::min(EditDistance(written, name), EditDistance(LastPart(written), LastPart(name)) + 1);
}

std::vector<std::string_view> NearNames(std::string_view name) {
    constexpr size_t kMost = 3;
    const std::string lower = LowerAscii(name);
    const size_t limit = std::max<size_t>(2, LastPart(lower).size() / 3);

    std::vector<std::pair<size_t, std::string_view>> similar;
    for (const catalogue::Row& row : catalogue::Rows()) {
        const size_t remoteness = Remoteness(lower, row.name);
        if (remoteness <= limit) similar.emplace_back(remoteness, row.name);
    }
    std::stable_sort(similar.begin(), similar.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });

    std::vector<std::string_view> names;
    names.reserve(similar.size());
    for (const auto& entry : similar)
        names.push_back(entry.second);
    names.resize(std::min(names.size(), kMost));
    return names;
}

std::string NumbersText(IntegerRange range) {
    return fmt::format("{} to {}", range.lowest, range.highest);
}

std::string WordsText(const catalogue::Row& row) {
    std::string text;
    for (const catalogue::EnumEntry& entry : row.words)
        text += fmt::format("{}{}", text.empty() ? "" : " ", entry.name);
    return text;
}

}  // namespace

ValueForm FormOf(const catalogue::Row& row) {
    return TypeOf(row.readType).form;
}
IntegerRange WritableRange(const catalogue::Row& row) {
    return TypeOf(row.writeType).range;
}
std::string_view TypeName(const catalogue::Row& row) {
    return catalogue::TypeText(row.readType);
}

std::string AccessName(const catalogue::Row& row) {
    return std::string(row.CanRead() ? "r" : "-") + (row.CanWrite() ? "w" : "-");
}

std::string AllowedValues(const catalogue::Row& row) {
    switch (FormOf(row)) {
        case ValueForm::Bool:
            return "yes no";
        case ValueForm::Integer:
            return NumbersText(WritableRange(row));
        case ValueForm::Word:
            return WordsText(row);
        case ValueForm::Text:
            return fmt::format("at most {} characters", row.MaxCharacters());
        case ValueForm::Address:
            return "a.b.c.d";
    }
    return {};
}

const catalogue::Row& FindSetting(std::string_view name) {
    const std::string lower = LowerAscii(name);
    for (const catalogue::Row& row : catalogue::Rows()) {
        if (row.name == lower || (!lower.empty() && LowerAscii(row.key) == lower)) return row;
    }
    throw UsageFailure(fmt::format("there is no setting \"{}\"", name), NearNamesAdvice(name));
}

const catalogue::Row& FindReadableSetting(std::string_view name) {
    const catalogue::Row& row = FindSetting(name);
    if (!row.CanRead()) {
        throw UsageFailure(fmt::format("{} can only be set", row.name), "use `kestrel set`");
    }
    return row;
}

const catalogue::Row& FindWritableSetting(std::string_view name) {
    const catalogue::Row& row = FindSetting(name);
    if (!row.CanWrite()) {
        throw UsageFailure(fmt::format("{} can only be read", row.name), "use `kestrel get`");
    }
    return row;
}

std::vector<const catalogue::Row*> MatchingSettings(std::string_view pattern) {
    const bool isGlob = pattern.find_first_of("*?") != std::string_view::npos;
    const std::string glob = isGlob ? LowerAscii(pattern) : "*" + LowerAscii(pattern) + "*";
    std::vector<const catalogue::Row*> rows;
    for (const catalogue::Row& row : catalogue::Rows()) {
        if (GlobMatches(glob, row.name)) rows.push_back(&row);
    }
    return rows;
}

std::string NearNamesAdvice(std::string_view name) {
    std::string advice;
    for (const std::string_view similar : NearNames(name)) {
        advice += (advice.empty() ? "did you mean " : " or ") + std::string(similar);
    }
    return advice.empty() ? "`kestrel list` prints all settings" : advice + "?";
}

}  // namespace cli
