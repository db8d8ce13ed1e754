// The printer's address book: 60 speed-dial and 5 one-touch records, each field of them a value with a key of
// its own.
#pragma once

#include <vector>

#include "vprinter/device/setting_spec.h"

namespace vprinter {

void AppendAddressBook(std::vector<SettingSpec>& specs);

}  // namespace vprinter
