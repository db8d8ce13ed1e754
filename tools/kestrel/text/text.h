// The client's notations for texts and bytes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "shared/text.h"

namespace cli {

using tools::ForTerminal;
using tools::LowerAscii;
using tools::Utf8FromWide;
using tools::WideFromUtf8;
using tools::WideText;

// An argument of the command line: throws a usage failure that names `what` when it is not UTF-8.
[[nodiscard]] WideText WideArgument(std::string_view text, std::string_view what);

// The text as the system's 8-bit code page holds it; none when a character would be lost on the way.
[[nodiscard]] std::optional<std::string> AnsiFromWide(const WideText& text);

// A pattern as file names have it, `*` and `?`, that stands for the whole text.
[[nodiscard]] bool GlobMatches(std::string_view pattern, std::string_view text);

// A file's text without the mark that some editors put before it.
[[nodiscard]] std::string_view WithoutByteOrderMark(std::string_view text);

// Device bytes on one line: printable ASCII stands for itself, a backslash is doubled, the rest is \xNN.
// BytesFromReadable reads the same notation back; none for any other use of the backslash.
[[nodiscard]] std::string ReadableBytes(std::string_view bytes);
[[nodiscard]] std::optional<std::string> BytesFromReadable(std::string_view text);

// Sixteen bytes a line: offset, hexadecimal digits, characters.
[[nodiscard]] std::string HexDump(std::string_view bytes);

}  // namespace cli
