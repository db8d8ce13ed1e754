// Message bytes as people read and write them: in records, traces and fault scripts.
//
//   \. \; \= \? \& \# \,   the control code that stands for this character inside a value
//   \xNN                   any other byte that is not printable ASCII
//   \\                     a backslash
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace opl {

/// Appends two hexadecimal digits.
void AppendHexByte(std::string& out, char byte);

/// Appends the readable form of `bytes`.
void AppendReadable(std::string& out, std::string_view bytes);

/// The bytes that a readable text stands for; nothing when it holds a backslash followed by anything else.
[[nodiscard]] std::optional<std::string> FromReadable(std::string_view text);

/// The bytes of a text of two-digit hexadecimal numbers, blanks between them allowed.
[[nodiscard]] std::optional<std::string> FromHex(std::string_view text);

}  // namespace opl
