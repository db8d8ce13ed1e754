#include <windows.h>

#include <cstdlib>
#include <string>

#include "own_folder.h"

// Objects, registry and printers are those of the system: suites run one after the other here.
std::filesystem::path MakeOwnFolder() {
    const std::string name = "kestrel-test-" + std::to_string(GetCurrentProcessId());
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directories(folder);
    _putenv_s("KESTREL_TEST_FOLDER", folder.string().c_str());
    return folder;
}

std::set<std::string> OpenFiles() {
    return {};
}
