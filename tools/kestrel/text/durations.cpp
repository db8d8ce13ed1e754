#include "kestrel/text/durations.h"

#include <array>
#include <charconv>
#include <limits>

namespace cli {
namespace {

struct Unit {
    std::string_view name;
    std::uint64_t milliseconds;
};
constexpr std::array<Unit, 3> kUnits = {{{"ms", 1}, {"s", 1000}, {"m", 60 * 1000}}};

}  // namespace

std::optional<std::uint32_t> ParseDuration(std::string_view text) {
    std::uint32_t count = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, count);
    if (error != std::errc()) return {};

    const std::string_view name(stop, static_cast<std::size_t>(end - stop));
    for (const Unit& unit : kUnits) {
        if (name != unit.name) continue;
        const std::uint64_t milliseconds = count * unit.milliseconds;
        if (milliseconds >= std::numeric_limits<std::uint32_t>::max()) return {};
        return static_cast<std::uint32_t>(milliseconds);
    }
    return {};
}

}  // namespace cli
