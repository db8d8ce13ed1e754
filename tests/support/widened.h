// Plain characters as the library takes them.
#pragma once

#include <string_view>

#include "kwt/wide_text.h"

inline WideText Widened(std::string_view text) {
    return WideText(text.begin(), text.end());
}
