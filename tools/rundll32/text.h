#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace printui {

using WideText = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;

// The command line and the messages are UTF-8, the spooler speaks UTF-16. A text that is not UTF-8 is
// refused.
[[nodiscard]] WideText WideFromUtf8(const std::string& text);
[[nodiscard]] std::string Utf8FromWide(const WideText& text);

// The calls take writable pointers for texts that they only read; the text ends with a zero.
[[nodiscard]] inline LPWSTR Writable(WideView text) {
    return const_cast<LPWSTR>(text.data());
}

// Letters A to Z in lower case: names are compared so.
[[nodiscard]] WideText Lower(WideView text);
[[nodiscard]] inline bool IsSameName(WideView left, WideView right) {
    return Lower(left) == Lower(right);
}

}  // namespace printui
