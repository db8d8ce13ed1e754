// What each system makes of `kestrel top`.
#pragma once

#include "kestrel/command_line.h"

namespace cli {

// Until the user has enough of it.
[[nodiscard]] Report ShowTop(Context& context, std::chrono::milliseconds interval);

}  // namespace cli
