#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace cli {

using WideText = std::basic_string<WCHAR>;

// The command line and all output are UTF-8, the library and the spooler speak UTF-16.
// Unpaired surrogates become U+FFFD; a text that is not UTF-8 gives none.
[[nodiscard]] std::optional<WideText> WideFromUtf8(std::string_view text);
[[nodiscard]] std::string Utf8FromWide(std::basic_string_view<WCHAR> text);

// The same for an argument of the command line: throws a usage failure that names `what`.
[[nodiscard]] WideText WideArgument(std::string_view text, std::string_view what);

// The text as the system's 8-bit code page holds it; none when a character would be lost on the way.
[[nodiscard]] std::optional<std::string> AnsiFromWide(const WideText& text);

// Device bytes on one line: printable ASCII stands for itself, a backslash is doubled, the rest is \xNN.
// BytesFromReadable reads the same notation back; none for any other use of the backslash.
[[nodiscard]] std::string ReadableBytes(std::string_view bytes);
[[nodiscard]] std::optional<std::string> BytesFromReadable(std::string_view text);

// Sixteen bytes a line: offset, hexadecimal digits, characters.
[[nodiscard]] std::string HexDump(std::string_view bytes);

// UTF-8 with control characters as \xNN, so that no text of a device can drive the terminal.
[[nodiscard]] std::string ForTerminal(std::string_view utf8);

// Letters A to Z only: names and words are ASCII.
[[nodiscard]] std::string LowerAscii(std::string_view text);

}  // namespace cli
