// Environment blocks: "NAME=value" texts one after another, ended by an empty one.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace winport {

// The texts of a block in UTF-8, as exec takes them.
std::vector<std::string> VariablesOf(const WCHAR* block);

}  // namespace winport
