#include <cstdlib>
#include <string>

#include "own_folder.h"

std::filesystem::path MakeOwnFolder() {
    // Where kernel objects lie by default too: in memory.
    std::string folder = "/dev/shm/kestrel-test-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) return {};
    setenv("WINPORT_HOME", folder.c_str(), 1);
    setenv("KESTREL_TEST_FOLDER", folder.c_str(), 1);
    return folder;
}
