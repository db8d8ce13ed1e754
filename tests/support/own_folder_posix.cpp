#include <cstdlib>
#include <system_error>

#include "own_folder.h"

std::filesystem::path MakeOwnFolder() {
    // Where kernel objects lie by default too: in memory.
    std::string folder = "/dev/shm/kestrel-test-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) return {};
    setenv("WINPORT_HOME", folder.c_str(), 1);
    setenv("KESTREL_TEST_FOLDER", folder.c_str(), 1);
    return folder;
}

std::set<std::string> OpenFiles() {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;  // as the one of this very look
        const std::string file = std::filesystem::read_symlink(entry.path(), gone).string();
        const bool isKept =
            file.ends_with("/kernel/lock") || file.find("/state/registry.db") != std::string::npos;
        if (!gone && !isKept && !file.ends_with("/fd"))
            files.insert(entry.path().filename().string() + " is " + file);
    }
    return files;
}
