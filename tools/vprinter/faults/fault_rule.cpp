// Rules read field by field, each complaint with its line.
#include "vprinter/faults/fault_rule.h"

#include <fmt/core.h>

#include <algorithm>
#include <functional>

#include "opl/readable_text.h"
#include "shared/json_lines.h"
#include "shared/text.h"
#include "shared/user_error.h"

namespace vprinter {
namespace {

constexpr uint64_t kMsPerSecond = 1000;

const FaultField& SelectionField(std::string_view name) {
    return *std::ranges::find(SelectionFields(), name, &FaultField::name);
}

std::vector<std::string_view> AllFields() {
    std::vector<std::string_view> names;
    for (const FaultField& field : SelectionFields())
        names.push_back(field.name);
    for (const FaultKind& kind : FaultKinds())
        names.push_back(kind.field.name);
    return names;
}

/// Reads the fields of one rule and knows where it stands, for its complaints.
class RuleReader final {
  public:
    RuleReader(const tools::Json& rule, std::string place) : rule_(rule), place_(std::move(place)) {}

    [[nodiscard]] FaultRule Read() const {
        if (!rule_.IsObject())
            throw tools::UserError(place_ + ": expected an object such as {\"match\": \"*\", ...}");
        CheckFields();
        FaultRule rule;
        rule.match = Pieces();
        if (Has("name")) rule.name = Text("name");
        if (Has("printer")) rule.printer = Text("printer");
        rule.skip = Selected("skip", rule.skip);
        rule.times = Selected("times", rule.times);
        rule.fromMs = Selected("from", 0) * kMsPerSecond;
        if (Has("until")) rule.untilMs = Selected("until", 0) * kMsPerSecond;
        if (rule.untilMs <= rule.fromMs) Complain("until", "a time after that of \"from\"");
        rule.everyMs = Selected("every", 0) * kMsPerSecond;
        rule.chance = Selected("chance", rule.chance);
        rule.seed = Selected("seed", rule.seed);
        ReadFault(rule.fault);
        return rule;
    }

  private:
    [[nodiscard]] bool Has(std::string_view field) const { return rule_.Find(field) != nullptr; }

    [[noreturn]] void Complain(std::string_view field, const std::string& expected) const {
        throw tools::UserError(fmt::format("{}, \"{}\": expected {}, found {}", place_, field, expected,
                                           Has(field) ? rule_.At(field).Dump() : "nothing"));
    }

    void CheckFields() const {
        const std::vector<std::string_view> fields = AllFields();
        for (const auto& [field, value] : rule_.Members()) {
            if (std::ranges::find(fields, field) != fields.end()) continue;
            throw tools::UserError(fmt::format("{}, \"{}\": there is no such field; the fields are {}",
                                               place_, field, tools::Joined(fields, ", ")));
        }
    }

    [[nodiscard]] std::string Text(std::string_view field) const {
        if (!Has(field) || !rule_.At(field).IsText()) Complain(field, "a text");
        return rule_.At(field).Text();
    }

    [[nodiscard]] std::string Unescaped(std::string_view field, std::string_view text) const {
        const std::optional<std::string> bytes = opl::FromReadable(text);
        if (!bytes)
            Complain(field, R"(only \xNN, \\ and a backslash before one of # & , . ; = ? as escapes)");
        return *bytes;
    }

    [[nodiscard]] bool Yes(std::string_view field) const {
        if (rule_.At(field) != true) Complain(field, "true, or no such field");
        return true;
    }

    [[nodiscard]] uint64_t Number(const FaultField& field) const {
        const tools::Json& value = rule_.At(field.name);
        const bool fits =
            value.IsUnsigned() && value.Unsigned() >= field.lowest && value.Unsigned() <= field.highest;
        if (!fits)
            Complain(field.name, fmt::format("a whole number from {} to {}", field.lowest, field.highest));
        return value.Unsigned();
    }

    [[nodiscard]] uint64_t Selected(std::string_view field, uint64_t without) const {
        return Has(field) ? Number(SelectionField(field)) : without;
    }

    [[nodiscard]] std::vector<std::string> Pieces() const {
        const std::string text = Text("match");
        if (text.empty()) Complain("match", "a request, with a * for what may be anything");
        std::vector<std::string> pieces;
        for (size_t begin = 0; begin <= text.size();) {
            const size_t end = std::min(text.find('*', begin), text.size());
            pieces.push_back(Unescaped("match", std::string_view(text).substr(begin, end - begin)));
            begin = end + 1;
        }
        return pieces;
    }

    void ReadFault(Fault& fault) const {
        const FaultKind* found = nullptr;
        bool any = false;
        for (const FaultKind& kind : FaultKinds()) {
            if (!Has(kind.field.name)) continue;
            any = true;
            if (kind.action == FaultAction::None) continue;
            if (found != nullptr) {
                throw tools::UserError(
                    fmt::format("{}: \"{}\" and \"{}\" do not go together; write two rules", place_,
                                found->field.name, kind.field.name));
            }
            found = &kind;
        }
        if (!any)
            throw tools::UserError(place_ + ": does nothing; expected one of the actions, delay or late");
        for (const FaultKind& kind : FaultKinds()) {
            if (kind.action == FaultAction::None) ReadCompanion(kind.field, fault);
        }
        if (found != nullptr) ReadArgument(*found, fault);
    }

    void ReadCompanion(const FaultField& field, Fault& fault) const {
        if (!Has(field.name)) return;
        if (field.form == FieldForm::Yes) {
            fault.late = Yes(field.name);
        } else {
            (field.name == "delay" ? fault.delayMs : fault.jitterMs) = static_cast<uint32_t>(Number(field));
        }
    }

    void ReadArgument(const FaultKind& kind, Fault& fault) const {
        const FaultField& field = kind.field;
        fault.action = kind.action;
        switch (field.form) {
            case FieldForm::Yes:
                static_cast<void>(Yes(field.name));
                break;
            case FieldForm::YesOrNumber:
                if (rule_.At(field.name) == true) break;
                [[fallthrough]];
            case FieldForm::Number:
                fault.number = Number(field);
                break;
            case FieldForm::Hex:
                fault.bytes = HexOrText(field.name);
                break;
            default:
                fault.bytes = Unescaped(field.name, Text(field.name));
        }
    }

    [[nodiscard]] std::string HexOrText(std::string_view field) const {
        constexpr std::string_view kHex = "hex:";
        std::string text = Text(field);
        if (!text.starts_with(kHex)) return text;
        const std::optional<std::string> bytes = opl::FromHex(std::string_view(text).substr(kHex.size()));
        if (!bytes) Complain(field, "two hexadecimal digits for each byte after \"hex:\"");
        return *bytes;
    }

    const tools::Json& rule_;
    std::string place_;
};

tools::Json ParseJson(std::string_view text, const std::string& fileName) {
    try {
        return tools::Json::Parse(text);
    } catch (const tools::JsonError& error) {
        if (error.Byte() == 0) throw tools::UserError(fmt::format("{}: {}", fileName, error.what()));
        throw tools::UserError(fmt::format("{}:{}: this is not JSON: {}", fileName,
                                           tools::LineOfByte(text, error.Byte()), error.what()));
    }
}

/// `placeOf(index)`: where a rule stands.
std::vector<FaultRule> ReadList(const tools::Json& list, const std::string& placeOfList,
                                const std::function<std::string(size_t)>& placeOf) {
    if (!list.IsArray()) throw tools::UserError(placeOfList + ": expected a list of rules: [{...}, {...}]");
    std::vector<FaultRule> rules;
    for (const tools::Json& item : list.Items())
        rules.push_back(
            RuleReader(item, fmt::format("{}: rule {}", placeOf(rules.size()), rules.size() + 1)).Read());
    return rules;
}

}  // namespace

std::vector<FaultRule> ParseFaults(std::string_view text, const std::string& fileName) {
    const tools::Json document = ParseJson(text, fileName);
    const std::vector<size_t> lines = tools::LinesOfItems(text);
    return ReadList(document, fileName + ":1", [&](size_t index) {
        return fmt::format("{}:{}", fileName, index < lines.size() ? lines[index] : 1);
    });
}

std::vector<FaultRule> ReadFaults(const tools::Json& rules, const std::string& place) {
    return ReadList(rules, place, [&](size_t) { return place; });
}

std::vector<FaultRule> FaultsFor(std::string_view port, const std::vector<FaultRule>& rules) {
    std::vector<FaultRule> own;
    std::ranges::copy_if(rules, std::back_inserter(own),
                         [&](const FaultRule& rule) { return rule.printer.empty() || rule.printer == port; });
    return own;
}

std::vector<std::string> PrintersNamed(const std::vector<FaultRule>& rules) {
    std::vector<std::string> ports;
    for (const FaultRule& rule : rules) {
        if (!rule.printer.empty()) ports.push_back(rule.printer);
    }
    return ports;
}

}  // namespace vprinter
