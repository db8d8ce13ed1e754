// The library as the system loaded it.
#pragma once

#include <windows.h>

namespace entry {

/// The library's own module; null before it has been attached and when its attach was refused.
[[nodiscard]] HMODULE LibraryModule();

}  // namespace entry
