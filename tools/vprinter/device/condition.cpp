#include "vprinter/device/condition.h"

#include <algorithm>

#include "vprinter/device/status_block.h"

namespace vprinter {
namespace {

constexpr int64_t kCenturyAndAHalf = 4'733'640'000;  // seconds
constexpr int64_t kLongest = 600;                    // seconds that something may take

struct Row {
    std::string_view key;
    ValueKind kind;
    std::string_view initial;
    int64_t lowest = 0;
    int64_t highest = 0;  // of a text: the number of its characters
};

constexpr Row kRows[] = {
    {condition::kOnline, ValueKind::Flag, "YES"},
    {condition::kOrdersSupplies, ValueKind::Flag, "YES"},
    {condition::kStatusKnown, ValueKind::Flag, "YES"},
    {condition::kConnection, ValueKind::Word, "USB"},
    {condition::kError, ValueKind::Word, "None"},
    {condition::kStatusText, ValueKind::Text, "", 0, status_layout::kMaxText},
    {condition::kInks[0], ValueKind::Number, "75", 0, 100},
    {condition::kInks[1], ValueKind::Number, "60", 0, 100},
    {condition::kInks[2], ValueKind::Number, "55", 0, 100},
    {condition::kInks[3], ValueKind::Number, "80", 0, 100},
    {condition::kInks[4], ValueKind::Number, "90", 0, 100},
    {condition::kUpgradeSeconds, ValueKind::Number, "5", 0, kLongest},
    {condition::kSearchSeconds, ValueKind::Number, "3", 0, kLongest},
    {condition::kNetworks, ValueKind::Text, "kestrel, workshop, guests 2.4 GHz, (null)", 0, 1200},
    {condition::kHosts, ValueKind::Text, "kestrel-9900.local, workshop-pc.local", 0, 2600},
    {condition::kPingAnswered, ValueKind::Number, "100", 0, 100},
    {condition::kClockOffset, ValueKind::Number, "0", -kCenturyAndAHalf, kCenturyAndAHalf},
    {condition::kClockHost, ValueKind::Text, "0000000000000000", 0, 16},
    {condition::kClockZone, ValueKind::Text, "0000", 0, 4},
};

std::vector<std::string_view> WordsOf(std::string_view key) {
    return key == condition::kError ? ErrorWords() : std::vector<std::string_view>{"USB", "Network"};
}

}  // namespace

void AppendConditions(std::vector<SettingSpec>& specs) {
    for (const Row& row : kRows) {
        SettingSpec spec;
        spec.key = row.key;
        spec.kind = row.kind;
        spec.readable = false;
        spec.initial = row.initial;
        if (row.kind == ValueKind::Word) spec.words = WordsOf(row.key);
        spec.maxLength = static_cast<uint32_t>(row.highest);
        spec.lowest = row.lowest;
        spec.highest = row.highest;
        specs.push_back(std::move(spec));
    }
}

std::vector<std::string_view> ListParts(std::string_view list) {
    std::vector<std::string_view> parts;
    while (!list.empty()) {
        const size_t comma = std::min(list.find(','), list.size());
        std::string_view part = list.substr(0, comma);
        part.remove_prefix(std::min(part.find_first_not_of(' '), part.size()));
        part = part.substr(0, part.find_last_not_of(' ') + 1);
        if (!part.empty()) parts.push_back(part);
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    return parts;
}

}  // namespace vprinter
