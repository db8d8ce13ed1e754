// The wide text type of the product: whatever width WCHAR has in the system's interfaces.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

using WideText = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;
