// The faults that are switched on. Their kinds, and how a rule is read, are those of the fault scripts.
#include <algorithm>

#include "opl/readable_text.h"
#include "shared/user_error.h"
#include "vprinter/api/refusal.h"
#include "vprinter/api/views.h"
#include "vprinter/faults/fault_kinds.h"
#include "vprinter/files/byte_text.h"

namespace vprinter::api {
namespace {

constexpr size_t kMostRules = 64;
constexpr std::string_view kOwnName = "panel-";

std::string MatchText(const FaultRule& rule) {
    std::string text;
    for (const std::string& part : rule.match) {
        if (&part != &rule.match.front()) text += '*';
        opl::AppendReadable(text, part);
    }
    return text;
}

std::string_view KindOf(const FaultRule& rule) {
    for (const FaultKind& kind : FaultKinds())
        if (kind.action == rule.fault.action) return kind.field.name;
    return {};
}

tools::Json FaultView(const FaultScript::State& state) {
    constexpr std::string_view kSources[] = {"script", "control", "hand"};
    const FaultRule& rule = state.rule;
    tools::Json view = {{"name", rule.name},
                        {"kind", KindOf(rule)},
                        {"match", MatchText(rule)},
                        {"source", kSources[static_cast<size_t>(state.source)]},
                        {"met", state.met}};
    if (rule.fault.delayMs > 0) view["delay"] = rule.fault.delayMs;
    if (rule.times != UINT64_MAX) view["times"] = rule.times;
    return view;
}

/// A name that no rule has.
std::string FreeName(const std::vector<FaultScript::State>& states) {
    for (size_t number = 1;; ++number) {
        std::string name = std::string(kOwnName) + std::to_string(number);
        const bool taken = std::ranges::any_of(
            states, [&](const FaultScript::State& state) { return state.rule.name == name; });
        if (!taken) return name;
    }
}

}  // namespace

tools::Json Faults(const PrinterParts& printer, const Call&) {
    tools::Json faults = tools::Json::EmptyArray();
    for (const FaultScript::State& state : printer.faults.Rules())
        faults.Append(FaultView(state));
    return {{"faults", faults}};
}

tools::Json AddFault(const PrinterParts& printer, const Call& call) {
    const std::vector<FaultScript::State> states = printer.faults.Rules();
    if (states.size() >= kMostRules) throw Refusal(422, "there are too many rules", "take some away");
    try {
        std::vector<FaultRule> rules = ReadFaults(tools::Json(tools::Json::Array{call.body}), "the rule");
        FaultRule& rule = rules.front();
        if (rule.name.empty()) rule.name = FreeName(states);
        tools::Json answer = {{"name", rule.name}};
        printer.faults.Add(std::move(rule), printer.nowMs);
        return answer;
    } catch (const tools::UserError& problem) {
        throw Refusal(422, problem.what(), "GET /api/fault-kinds tells what a rule may hold");
    }
}

tools::Json RemoveFault(const PrinterParts& printer, const Call& call) {
    if (!printer.faults.Remove(call.arguments.front()))
        throw Refusal(404, "no rule has this name", "GET faults lists them");
    return tools::Json::EmptyObject();
}

}  // namespace vprinter::api
