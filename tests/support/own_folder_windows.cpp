#include <windows.h>

#include "own_folder.h"

std::filesystem::path OwnFolder::Make() {
    const std::string name = "kestrel-test-" + std::to_string(GetCurrentProcessId());
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directories(folder);
    return folder;
}

void SetVariable(const char* name, const std::string& value) {
    _putenv_s(name, value.c_str());
}

std::map<std::string, std::string> OpenFiles() {
    return {};
}
