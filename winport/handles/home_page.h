// The one page that all processes of a home share: numbers that nobody else may have, and the bells at which
// threads sleep that wait for several events.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "winport/handles/object_page.h"

namespace winport {

inline constexpr size_t kBellLines = 60;
inline constexpr size_t kBellsOfLine = 16;

struct HomePage {
    std::atomic<uint32_t> lastToken;
    // Tells this page from another home's, and from the one that takes its place when a cleaner removed the
    // file: 0 until the first bell is given out.
    alignas(64) std::atomic<uint32_t> bellTag;
    std::atomic<uint32_t> lastBell;
    alignas(64) std::array<std::array<std::atomic<uint32_t>, kBellsOfLine>, kBellLines> bells;
};

static_assert(sizeof(HomePage) <= kPageSize);

// Null when it cannot be mapped. Mapped at the first call, and for as long as the process lives.
HomePage* SharedHomePage();

}  // namespace winport
