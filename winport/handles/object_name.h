// Names of kernel objects and the files that stand for them.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

namespace winport {

// The file name of an object's name. "Global\" (and "Local\", the same as no prefix) are prefixes in exactly
// these letters; no other backslash is allowed. Nothing with the last-error value 3 (not a valid name) or 206
// (longer than 260 characters).
std::optional<std::string> ObjectFileName(LPCWSTR name);

// The name as it stands in an object's page: "Local\x" and "x" are one object.
LPCWSTR WithoutLocalPrefix(LPCWSTR name);

// Whether a file of the folder stands for an object.
bool IsObjectFileName(std::string_view fileName);

}  // namespace winport
