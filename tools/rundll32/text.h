// Texts of the command line and the spooler.
#pragma once

#include <string>

#include "shared/text.h"

namespace printui {

using tools::LowerAscii;
using tools::Utf8FromWide;
using tools::WideText;
using tools::WideView;

// Refuses an argument that is not UTF-8.
[[nodiscard]] WideText WideArgument(const std::string& text);

// The calls take writable pointers for texts that they only read; the text ends with a zero.
[[nodiscard]] inline LPWSTR Writable(WideView text) {
    return const_cast<LPWSTR>(text.data());
}

// Names are compared so.
[[nodiscard]] inline bool IsSameName(WideView left, WideView right) {
    return LowerAscii(left) == LowerAscii(right);
}

}  // namespace printui
