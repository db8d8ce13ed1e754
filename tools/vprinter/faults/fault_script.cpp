#include "vprinter/faults/fault_script.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "shared/user_error.h"
#include "vprinter/trace/readable_text.h"

namespace vprinter {
namespace {

using nlohmann::json;

constexpr uint64_t kMaxDelayMs = 600'000;
constexpr uint64_t kMaxCount = 1'000'000'000;
constexpr uint64_t kMaxReplyBytes = 1 << 20;

enum class Argument : uint8_t { Yes, Number, Text, TextOrHex, YesOrNumber };

struct ActionRow {
    std::string_view field;
    FaultAction action;
    Argument argument;
    uint64_t lowest = 0;
    uint64_t highest = 0;
};

constexpr std::array kActions{
    ActionRow{"noReply", FaultAction::NoReply, Argument::Yes},
    ActionRow{"otherProcess", FaultAction::OtherProcess, Argument::YesOrNumber, 1, UINT32_MAX},
    ActionRow{"aborted", FaultAction::Aborted, Argument::Yes},
    ActionRow{"cut", FaultAction::Cut, Argument::Number, 0, kMaxReplyBytes},
    ActionRow{"garbage", FaultAction::Garbage, Argument::TextOrHex},
    ActionRow{"reply", FaultAction::Reply, Argument::Text},
    ActionRow{"responseNumber", FaultAction::ResponseNumber, Argument::Number, 0, UINT64_MAX},
    ActionRow{"repeat", FaultAction::Repeat, Argument::Number, 2, 100'000},
    ActionRow{"pad", FaultAction::Pad, Argument::Number, 1, kMaxReplyBytes},
    ActionRow{"crashBefore", FaultAction::CrashBefore, Argument::Yes},
    ActionRow{"crashAfter", FaultAction::CrashAfter, Argument::Yes},
};

constexpr std::string_view kOtherFields[] = {"match", "printer", "skip", "times", "delay", "late", "comment"};

const ActionRow* FindAction(std::string_view field) {
    const auto row = std::find_if(kActions.begin(), kActions.end(),
                                  [&](const ActionRow& candidate) { return candidate.field == field; });
    return row == kActions.end() ? nullptr : &*row;
}

std::string AllFields() {
    std::string list = fmt::format("{}", fmt::join(kOtherFields, ", "));
    for (const ActionRow& row : kActions)
        list += fmt::format(", {}", row.field);
    return list;
}

size_t LineOfByte(std::string_view text, size_t offset) {
    return 1 +
           static_cast<size_t>(std::count(text.begin(), text.begin() + std::min(offset, text.size()), '\n'));
}

/// The lines on which the objects of a valid JSON list begin.
std::vector<size_t> LinesOfItems(std::string_view text) {
    std::vector<size_t> lines;
    size_t line = 1;
    int depth = 0;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\n') ++line;
        if (quoted) {
            if (c == '\\') ++i;
            if (c == '"') quoted = false;
            continue;
        }
        if (c == '"') quoted = true;
        if ((c == '{' || c == '[') && ++depth == 2) lines.push_back(line);
        if (c == '}' || c == ']') --depth;
    }
    return lines;
}

/// Reads the fields of one rule and knows where it stands, for its complaints.
class RuleReader final {
  public:
    RuleReader(const json& rule, std::string place) : rule_(rule), place_(std::move(place)) {}

    [[nodiscard]] FaultRule Read() const {
        if (!rule_.is_object())
            throw tools::UserError(place_ + ": expected an object such as {\"match\": \"*\", ...}");
        CheckFields();
        FaultRule rule;
        ReadMatch(rule);
        if (Has("printer")) rule.printer = Text("printer");
        if (Has("skip")) rule.skip = Number("skip", 0, kMaxCount);
        if (Has("times")) rule.times = Number("times", 1, kMaxCount);
        if (Has("delay")) rule.fault.delayMs = static_cast<uint32_t>(Number("delay", 1, kMaxDelayMs));
        if (Has("late")) rule.fault.late = Yes("late");
        ReadAction(rule.fault);
        return rule;
    }

  private:
    [[nodiscard]] bool Has(std::string_view field) const { return rule_.contains(field); }

    [[noreturn]] void Complain(std::string_view field, const std::string& expected) const {
        throw tools::UserError(fmt::format("{}, \"{}\": expected {}, found {}", place_, field, expected,
                                           Has(field) ? rule_[std::string(field)].dump() : "nothing"));
    }

    void CheckFields() const {
        for (const auto& [field, value] : rule_.items()) {
            const bool known =
                FindAction(field) != nullptr ||
                std::ranges::find(kOtherFields, std::string_view(field)) != std::end(kOtherFields);
            if (!known) {
                throw tools::UserError(fmt::format("{}, \"{}\": there is no such field; the fields are {}",
                                                   place_, field, AllFields()));
            }
        }
    }

    [[nodiscard]] std::string Text(std::string_view field) const {
        if (!Has(field) || !rule_[std::string(field)].is_string()) Complain(field, "a text");
        return rule_[std::string(field)].get<std::string>();
    }

    [[nodiscard]] std::string Bytes(std::string_view field) const {
        const std::optional<std::string> bytes = FromReadable(Text(field));
        if (!bytes)
            Complain(field, R"(only \xNN, \\ and a backslash before one of # & , . ; = ? as escapes)");
        return *bytes;
    }

    [[nodiscard]] bool Yes(std::string_view field) const {
        if (rule_[std::string(field)] != json(true)) Complain(field, "true, or no such field");
        return true;
    }

    [[nodiscard]] uint64_t Number(std::string_view field, uint64_t lowest, uint64_t highest) const {
        const json& value = rule_[std::string(field)];
        const bool fits =
            value.is_number_unsigned() && value.get<uint64_t>() >= lowest && value.get<uint64_t>() <= highest;
        if (!fits) Complain(field, fmt::format("a whole number from {} to {}", lowest, highest));
        return value.get<uint64_t>();
    }

    void ReadMatch(FaultRule& rule) const {
        std::string text = Text("match");
        rule.prefix = !text.empty() && text.back() == '*';
        rule.match = Bytes("match");
        if (rule.prefix) rule.match.pop_back();
        if (rule.match.empty() && !rule.prefix) Complain("match", "a request, or its beginning and a *");
    }

    void ReadAction(Fault& fault) const {
        const ActionRow* found = nullptr;
        for (const ActionRow& row : kActions) {
            if (!Has(row.field)) continue;
            if (found != nullptr) {
                throw tools::UserError(
                    fmt::format("{}: \"{}\" and \"{}\" do not go together; write two rules", place_,
                                found->field, row.field));
            }
            found = &row;
        }
        if (found != nullptr) return ReadArgument(*found, fault);
        if (fault.delayMs == 0 && !fault.late) {
            throw tools::UserError(place_ + ": does nothing; expected one of the actions, delay or late");
        }
    }

    void ReadArgument(const ActionRow& row, Fault& fault) const {
        fault.action = row.action;
        switch (row.argument) {
            case Argument::Yes:
                static_cast<void>(Yes(row.field));
                break;
            case Argument::YesOrNumber:
                if (rule_[std::string(row.field)] == json(true)) break;
                [[fallthrough]];
            case Argument::Number:
                fault.number = Number(row.field, row.lowest, row.highest);
                break;
            case Argument::Text:
                fault.bytes = Bytes(row.field);
                break;
            case Argument::TextOrHex:
                fault.bytes = HexOrText(row.field);
                break;
        }
    }

    [[nodiscard]] std::string HexOrText(std::string_view field) const {
        constexpr std::string_view kHex = "hex:";
        std::string text = Text(field);
        if (!text.starts_with(kHex)) return text;
        const std::optional<std::string> bytes = FromHex(std::string_view(text).substr(kHex.size()));
        if (!bytes) Complain(field, "two hexadecimal digits for each byte after \"hex:\"");
        return *bytes;
    }

    const json& rule_;
    std::string place_;
};

json ParseJson(std::string_view text, const std::string& fileName) {
    try {
        return json::parse(text);
    } catch (const json::parse_error& error) {
        throw tools::UserError(
            fmt::format("{}:{}: this is not JSON: {}", fileName, LineOfByte(text, error.byte), error.what()));
    } catch (const json::out_of_range& error) {
        throw tools::UserError(fmt::format("{}: a number is too large: {}", fileName, error.what()));
    }
}

std::string_view WithResponseNumber(uint64_t number, std::string_view reply, std::string& scratch) {
    const size_t digits = std::min(reply.find_first_not_of("0123456789"), reply.size());
    const bool numbered = digits < reply.size() && reply[digits] == ',';
    scratch = fmt::format("{:04},{}", number, numbered ? reply.substr(digits + 1) : reply);
    return scratch;
}

std::string_view Padded(uint64_t size, std::string_view reply, std::string& scratch) {
    if (size <= reply.size() || reply.empty()) return reply;
    scratch.assign(reply.substr(0, reply.size() - 1));
    scratch.append(size - reply.size(), 'x');
    scratch.push_back(reply.back());
    return scratch;
}

std::string_view Repeated(uint64_t times, std::string_view reply, std::string& scratch) {
    scratch.clear();
    for (uint64_t i = 0; i < times && scratch.size() + reply.size() <= kMaxReplyBytes; ++i)
        scratch += reply;
    return scratch;
}

}  // namespace

FaultScript FaultScript::Parse(std::string_view text, const std::string& fileName) {
    const json document = ParseJson(text, fileName);
    if (!document.is_array())
        throw tools::UserError(fileName + ":1: expected a list of rules: [{...}, {...}]");
    const std::vector<size_t> lines = LinesOfItems(text);
    std::vector<FaultRule> rules;
    for (const json& item : document) {
        const size_t index = rules.size();
        const size_t line = index < lines.size() ? lines[index] : 1;
        rules.push_back(RuleReader(item, fmt::format("{}:{}: rule {}", fileName, line, index + 1)).Read());
    }
    return FaultScript(std::move(rules));
}

FaultScript FaultScript::For(std::string_view port) const {
    std::vector<FaultRule> rules;
    std::ranges::copy_if(rules_, std::back_inserter(rules),
                         [&](const FaultRule& rule) { return rule.printer.empty() || rule.printer == port; });
    return FaultScript(std::move(rules));
}

std::vector<std::string> FaultScript::PrintersNamed() const {
    std::vector<std::string> ports;
    for (const FaultRule& rule : rules_) {
        if (!rule.printer.empty()) ports.push_back(rule.printer);
    }
    return ports;
}

const Fault* FaultScript::Next(std::string_view request) {
    for (FaultRule& rule : rules_) {
        const bool matches = rule.prefix ? request.starts_with(rule.match) : request == rule.match;
        if (!matches || rule.times == 0) continue;
        if (rule.skip > 0) {
            --rule.skip;
            continue;
        }
        --rule.times;
        return &rule.fault;
    }
    return nullptr;
}

std::string_view FaultyReply(const Fault& fault, std::string_view reply, std::string& scratch) {
    switch (fault.action) {
        case FaultAction::Cut:
            return reply.substr(0, fault.number);
        case FaultAction::Garbage:
        case FaultAction::Reply:
            return fault.bytes;
        case FaultAction::ResponseNumber:
            return WithResponseNumber(fault.number, reply, scratch);
        case FaultAction::Repeat:
            return Repeated(fault.number, reply, scratch);
        case FaultAction::Pad:
            return Padded(fault.number, reply, scratch);
        default:
            return reply;
    }
}

}  // namespace vprinter
