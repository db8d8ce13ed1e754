#include "kestrel/fleet/differences.h"

namespace cli {

SettingSide SideOfPrinter(const Printer& printer, const std::function<void(std::string_view)>& step) {
    SettingSide side;
    for (const catalogue::Row& row : catalogue::Rows()) {
        if (!row.CanRead() || !row.CanWrite()) continue;
        step(row.name);
        try {
            side.settings[&row] = printer.Get(row);
        } catch (const Failure& failure) {
            if (IsHopeless(failure)) {
                side.failure = failure;
                return side;
            }
            side.settings[&row] = std::nullopt;
        }
    }
    return side;
}

SettingSide SideOfFile(const WantedState& state, const std::string& other) {
    SettingSide side;
    side.isWhole = false;
    for (const WantedSetting& setting : state.For(other))
        side.settings[setting.row] = setting.value;
    return side;
}

Comparison Compare(const SettingSide& left, const SettingSide& right) {
    Comparison comparison;
    const auto valueOf = [](const SettingSide& side, const catalogue::Row& row) {
        const auto found = side.settings.find(&row);
        return found == side.settings.end() ? std::nullopt : found->second;
    };
    for (const catalogue::Row& row : catalogue::Rows()) {
        const bool isLeft = left.settings.contains(&row);
        const bool isRight = right.settings.contains(&row);
        const bool counts = left.isWhole && right.isWhole ? isLeft || isRight : isLeft && isRight;
        if (!counts) continue;
        ++comparison.compared;
        const std::optional<Value> leftValue = valueOf(left, row);
        const std::optional<Value> rightValue = valueOf(right, row);
        if (leftValue != rightValue) comparison.differences.push_back({&row, leftValue, rightValue});
    }
    return comparison;
}

}  // namespace cli
