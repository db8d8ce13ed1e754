// A folder of a suite's own, for its files and, where the system lets it, for its kernel objects, registry
// and printers too. Its path is in the variable KESTREL_TEST_FOLDER.
#pragma once

#include <filesystem>

std::filesystem::path MakeOwnFolder();
