#include <stdlib.h>
#include <sys/stat.h>

#include <cerrno>

#include "own_folder.h"

std::filesystem::path OwnFolder::Make() {
    // Where kernel objects lie by default too: in memory.
    std::string folder = "/dev/shm/kestrel-test-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) throw std::system_error(errno, std::generic_category(), folder);
    SetVariable("WINPORT_HOME", folder);
    return folder;
}

void SetVariable(const char* name, const std::string& value) {
    setenv(name, value.c_str(), 1);
}

std::map<std::string, std::string> OpenFiles() {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;  // as the one of this very look
        const std::string file = std::filesystem::read_symlink(entry.path(), gone).string();
        const bool isKept =
            file.ends_with("/kernel/lock") || file.find("/state/registry.db") != std::string::npos;
        struct stat status {};
        const std::string number = entry.path().filename().string();
        if (gone || isKept || file.ends_with("/fd") || fstat(std::stoi(number), &status) != 0) continue;
        // Paths change with a test that mounts.
        files[number + ' ' + std::to_string(status.st_dev) + ' ' + std::to_string(status.st_ino)] =
            number + " is " + file;
    }
    return files;
}
