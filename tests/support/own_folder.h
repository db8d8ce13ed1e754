// A folder of a suite's own, for its files and, where the system lets it, for its kernel objects, registry
// and printers too. Its path is in the variable KESTREL_TEST_FOLDER.
#pragma once

#include <filesystem>
#include <set>
#include <string>

std::filesystem::path MakeOwnFolder();

// What this process has open, but for what it keeps from the first use to its end. On Windows nothing: the
// system's own libraries open and close handles as they like.
std::set<std::string> OpenFiles();
