// Conversions between the UTF-16 of the Windows calls and the UTF-8 of Linux paths, names and databases.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace winport {

// Lone surrogates become U+FFFD; malformed UTF-8 likewise.
std::string ToUtf8(std::u16string_view text);
std::u16string FromUtf8(std::string_view text);

// A Windows path as a Linux path: UTF-8 with "\" turned into "/".
std::string ToHostPath(std::u16string_view path);

}  // namespace winport
