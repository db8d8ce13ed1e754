#include <stdlib.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "own_home.h"

namespace {

std::string& Folder() {
    static std::string folder;
    return folder;
}

}  // namespace

OwnHome::OwnHome() {
    Folder() = (std::filesystem::temp_directory_path() / "contract-home-XXXXXX").string();
    if (::mkdtemp(Folder().data()) == nullptr) {
        std::fprintf(stderr, "A test home in %s could not be made; check that the folder can be written.\n",
                     Folder().c_str());
        std::exit(EXIT_FAILURE);
    }
    ::setenv("WINPORT_HOME", Folder().c_str(), 1);
}

OwnHome::~OwnHome() {
    std::error_code ignored;
    std::filesystem::remove_all(Folder(), ignored);
}

void SetVariable(const char* name, const char* value) {
    ::setenv(name, value, 1);
}
