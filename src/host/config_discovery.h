// Which configuration files may belong to a module, and what each must say to be the module's own.
#pragma once

#include <vector>

#include "kwt/wide_text.h"

namespace host {

/// Full paths of the files that exist, in the order in which they are to be tried, whose entry for the
/// module's kind names the module itself in any letter case. `modulePath` is the module's full file name.
[[nodiscard]] std::vector<WideText> FindConfigFiles(const WideText& modulePath);

}  // namespace host
