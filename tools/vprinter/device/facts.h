// What this printer answers besides its settings: the first value of each such key and the range of each
// number. What the settings begin with and take stands in their catalogue.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "opl/vocabulary.h"

namespace vprinter {

struct DeviceFact {
    opl::Key key;
    std::string_view initial;  // as people write it; addresses dotted
    int32_t lowest = 0;        // of a number
    int32_t highest = 0;
    bool live = false;  // made when it is asked, or something happens when it is set
};

/// One row for each key that the printer answers; a key that is neither here nor a setting's is unknown to
/// it.
[[nodiscard]] std::span<const DeviceFact> DeviceFacts();

}  // namespace vprinter
