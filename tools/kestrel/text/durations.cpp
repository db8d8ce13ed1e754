// A number and a unit.
#include "kestrel/text/durations.h"

#include <array>
#include <charconv>
#include <limits>

namespace cli {
namespace {

struct Unit {
    std::string_view name;
    uint64_t milliseconds;
};
constexpr std::array<Unit, 3> kUnits = {{{"ms", 1}, {"s", 1000}, {"m", 60'000}}};

}  // namespace

std::optional<uint32_t> ParseDuration(std::string_view text) {
    uint32_t count = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, count);
    if (error != std::errc()) return {};

    const std::string_view name(stop, static_cast<size_t>(end - stop));
    for (const Unit& unit : kUnits) {
        if (name != unit.name) continue;
        const uint64_t milliseconds = count * unit.milliseconds;
        if (milliseconds >= std::numeric_limits<uint32_t>::max()) return {};
        return static_cast<uint32_t>(milliseconds);
    }
    return {};
}

}  // namespace cli
