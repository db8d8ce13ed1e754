#include "kestrel/fleet/sight.h"

#include <algorithm>

namespace cli {

std::vector<SightEvent> KnownPrinter::Learn(const Sight& now) {
    std::vector<SightEvent> events;
    const bool isFirst = !std::exchange(wasSeen_, true);
    if (isFirst ? !now.answers : now.answers != last_.answers)
        events.push_back({{}, {}, now.reason, now.answers});
    last_.answers = now.answers;
    if (!now.answers) return events;
    const bool hadFacts = !last_.facts.empty();
    for (const auto& [key, value] : now.facts) {
        const auto old = std::ranges::find(last_.facts, key, &std::pair<std::string, std::string>::first);
        const std::string before = old == last_.facts.end() ? "-" : old->second;
        if (hadFacts && before != value) events.push_back({key, before, value});
    }
    last_.facts = now.facts;
    return events;
}

}  // namespace cli
