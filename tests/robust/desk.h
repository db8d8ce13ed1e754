// A product that is installed without its client, and printer P on port USB001.
#pragma once

#include <functional>

#include "kwt/wide_text.h"

inline constexpr const WCHAR* kCommandChannel = TEXT("ZRIJ9900StatMonClass-01042005OPLChannelUSB001");

// False when the system refuses a step; once in a home.
[[nodiscard]] bool InstallDesk();

// On a thread of its own, with the printer selected; false when it cannot be.
[[nodiscard]] bool OnDesk(const std::function<void()>& body);
