// The first rule that matches and is in force decides.
#include "vprinter/faults/fault_script.h"

#include <algorithm>
#include <iterator>

namespace vprinter {
namespace {

constexpr uint64_t kPercent = 100;

/// The next number of a sequence that is the same on every machine.
uint64_t NextRandom(uint64_t& state) {
    state += 0x9E3779B97F4A7C15;
    uint64_t mixed = state;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    return mixed ^ (mixed >> 31);
}

bool Lasts(FaultAction action) {
    return action == FaultAction::Busy || action == FaultAction::Offline;
}

}  // namespace

std::optional<Fault> FaultScript::Next(std::string_view request, uint64_t nowMs) {
    if (!HasRules()) return {};
    const std::lock_guard guard(lock_);
    for (Entry& entry : entries_) {
        if (!IsMet(entry, request, nowMs)) continue;
        Fault fault = entry.rule.fault;
        if (fault.jitterMs > 0)
            fault.delayMs += static_cast<uint32_t>(NextRandom(entry.random) % (uint64_t{fault.jitterMs} + 1));
        return fault;
    }
    return {};
}

bool FaultScript::IsMet(Entry& entry, std::string_view request, uint64_t nowMs) {
    if (nowMs < entry.lastsUntilMs) return true;
    const FaultRule& rule = entry.rule;
    const uint64_t age = nowMs - entry.sinceMs;
    if (entry.met >= rule.times || age < rule.fromMs || age >= rule.untilMs) return false;
    if (nowMs < entry.restUntilMs || !Matches(rule, request)) return false;
    if (++entry.matched <= rule.skip) return false;
    if (rule.chance < kPercent && NextRandom(entry.random) % kPercent >= rule.chance) return false;
    ++entry.met;
    if (rule.everyMs > 0) entry.restUntilMs = nowMs + rule.everyMs;
    if (Lasts(rule.fault.action)) entry.lastsUntilMs = nowMs + rule.fault.number;
    return true;
}

// Each piece at the first place where it fits: if any choice of places does, this one does.
bool FaultScript::Matches(const FaultRule& rule, std::string_view request) {
    const std::vector<std::string>& pieces = rule.match;
    if (pieces.size() == 1) return request == pieces.front();
    if (!request.starts_with(pieces.front())) return false;
    request.remove_prefix(pieces.front().size());
    for (size_t i = 1; i + 1 < pieces.size(); ++i) {
        const size_t found = request.find(pieces[i]);
        if (found == std::string_view::npos) return false;
        request.remove_prefix(found + pieces[i].size());
    }
    return request.ends_with(pieces.back());
}

void FaultScript::Add(FaultRule rule, uint64_t nowMs) {
    const std::lock_guard guard(lock_);
    if (!rule.name.empty())
        std::erase_if(entries_, [&](const Entry& entry) { return entry.rule.name == rule.name; });
    InsertFirst(FaultSource::Hand, {std::move(rule)}, nowMs);
}

bool FaultScript::Remove(std::string_view name) {
    const std::lock_guard guard(lock_);
    const size_t removed =
        std::erase_if(entries_, [&](const Entry& entry) { return entry.rule.name == name; });
    hasRules_ = !entries_.empty();
    return removed > 0;
}

void FaultScript::Replace(FaultSource source, std::vector<FaultRule> rules, uint64_t nowMs) {
    const std::lock_guard guard(lock_);
    std::erase_if(entries_, [&](const Entry& entry) { return entry.source == source; });
    InsertFirst(source, std::move(rules), nowMs);
}

void FaultScript::InsertFirst(FaultSource source, std::vector<FaultRule> rules, uint64_t nowMs) {
    std::vector<Entry> entries;
    entries.reserve(rules.size() + entries_.size());
    for (FaultRule& rule : rules)
        entries.push_back({std::move(rule), source, nowMs});
    std::move(entries_.begin(), entries_.end(), std::back_inserter(entries));
    entries_ = std::move(entries);
    hasRules_ = !entries_.empty();
}

std::vector<FaultScript::State> FaultScript::Rules() const {
    const std::lock_guard guard(lock_);
    std::vector<State> states;
    for (const Entry& entry : entries_)
        states.push_back({entry.rule, entry.source, entry.met});
    return states;
}

}  // namespace vprinter
