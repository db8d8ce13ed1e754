// The ANSI code page of the process, and conversions in pages other than Windows-1252.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace winport {

inline constexpr UINT kWindows1252 = 1252;
inline constexpr UINT kUtf8 = 65001;

// The number in WINPORT_ANSI_CODEPAGE, else 1252; also 1252 when the system cannot convert the page asked
// for. Read once per process.
UINT AnsiCodePage();

// Bytes in the page become UTF-16; what the page does not define becomes its Unicode default character.
std::u16string DecodeInPage(UINT page, std::string_view bytes);

// UTF-16 becomes bytes in the page. Every unit that the page cannot hold becomes `fallback`, so a character
// outside the basic plane becomes two of them, and sets `usedFallback`. In UTF-8 only lone surrogates are
// replaced, by U+FFFD.
std::string EncodeInPage(UINT page, std::u16string_view text, char fallback, bool& usedFallback);

}  // namespace winport
