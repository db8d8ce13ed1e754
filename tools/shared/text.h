// Texts between the two worlds: the command line, files and all output are UTF-8, the Windows calls take
// UTF-16.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

namespace tools {

using WideText = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;

/// Nothing for a text that is not UTF-8.
[[nodiscard]] std::optional<WideText> WideFromUtf8(std::string_view text);
/// Unpaired surrogates become U+FFFD.
[[nodiscard]] std::string Utf8FromWide(WideView text);

/// UTF-8 with control characters as \xNN, so that no text of somebody else's can drive the terminal or make
/// lines of its own.
[[nodiscard]] std::string ForTerminal(std::string_view utf8);

/// Letters A to Z only: names and words are ASCII.
[[nodiscard]] std::string LowerAscii(std::string_view text);
[[nodiscard]] WideText LowerAscii(WideView text);

template <typename Words>
[[nodiscard]] std::string Joined(const Words& words, std::string_view between) {
    std::string all;
    for (const std::string_view word : words) {
        if (!all.empty()) all += between;
        all += word;
    }
    return all;
}

}  // namespace tools
