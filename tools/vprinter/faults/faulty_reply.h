// The messages that faults make of good replies.
#pragma once

#include <string>
#include <string_view>

#include "vprinter/faults/fault_rule.h"

namespace vprinter {

/// What goes out in place of `reply`; `previous` is what went out before. `scratch` holds it when it is made
/// anew.
[[nodiscard]] std::string_view FaultyReply(const Fault& fault, std::string_view reply,
                                           std::string_view previous, std::string& scratch);

}  // namespace vprinter
