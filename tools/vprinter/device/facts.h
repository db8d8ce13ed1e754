// What this printer is and allows: the first value of each setting and the range of each number. Keys, types
// and words are the product's own and stand elsewhere.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "opl/vocabulary.h"

namespace vprinter {

struct DeviceFact {
    OplKey key;
    std::string_view initial;  // as people write it; addresses dotted
    int32_t lowest = 0;        // of a number
    int32_t highest = 0;
    bool live = false;  // made when it is asked, or something happens when it is set
};

/// One row for each key that the printer answers; a key without a row is unknown to it.
[[nodiscard]] std::span<const DeviceFact> DeviceFacts();

}  // namespace vprinter
