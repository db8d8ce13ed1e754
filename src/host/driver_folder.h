// Where the driver installer puts the files of the printer drivers.
#pragma once

#include "kwt/wide_text.h"

namespace host {

/// With a backslash at its end; empty, with the spooler's last-error value, when the spooler does not say.
[[nodiscard]] WideText DriverFileFolder();

}  // namespace host
