// The rules that are in force on one printer, and which of them meets a request.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vprinter/faults/fault_rule.h"

namespace vprinter {

/// From where a rule came.
enum class FaultSource : uint8_t { Script, Control, Hand };

/// Rules may come and go on any thread while the printer runs; one that comes later is asked before those
/// that are there. Times are milliseconds of a clock that only grows, the same one in every call.
class FaultScript final {
  public:
    FaultScript() = default;
    FaultScript(std::vector<FaultRule> rules, uint64_t nowMs) {
        Replace(FaultSource::Script, std::move(rules), nowMs);
    }

    /// The fault for this request, from the first rule that is in force for it; none when all is to go well.
    /// Its delay has the jitter in it. The serving thread's alone; takes no lock while there is no rule.
    [[nodiscard]] std::optional<Fault> Next(std::string_view request, uint64_t nowMs);

    /// Whether a rule is there at all.
    [[nodiscard]] bool HasRules() const { return hasRules_.load(std::memory_order_relaxed); }

    /// One more rule. It takes the place of those that have its name, if it has one.
    void Add(FaultRule rule, uint64_t nowMs);
    /// False when no rule has this name.
    bool Remove(std::string_view name);
    /// All rules of one source, whose earlier ones go; their counts begin anew.
    void Replace(FaultSource source, std::vector<FaultRule> rules, uint64_t nowMs);

    struct State {
        FaultRule rule;
        FaultSource source;
        uint64_t met;  // requests so far
    };
    /// As they are asked.
    [[nodiscard]] std::vector<State> Rules() const;

  private:
    struct Entry {
        FaultRule rule;
        FaultSource source;
        uint64_t sinceMs;
        uint64_t random = rule.seed;
        uint64_t matched = 0;
        uint64_t met = 0;
        uint64_t restUntilMs = 0;   // of a rule that applies only so often
        uint64_t lastsUntilMs = 0;  // of a fault that meets all requests for a while
    };

    [[nodiscard]] static bool IsMet(Entry& entry, std::string_view request, uint64_t nowMs);
    [[nodiscard]] static bool Matches(const FaultRule& rule, std::string_view request);
    void InsertFirst(FaultSource source, std::vector<FaultRule> rules, uint64_t nowMs);

    mutable std::mutex lock_;
    std::vector<Entry> entries_;
    std::atomic<bool> hasRules_ = false;
};

}  // namespace vprinter
