// The log lies where this user's programs keep theirs.
#include <windows.h>

#include <cstdlib>

#include "statusmon/platform.h"

namespace statusmon {

bool HasOutput() {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    return output != nullptr && output != INVALID_HANDLE_VALUE && GetFileType(output) != FILE_TYPE_UNKNOWN;
}

std::string StateFolder() {
    for (const char* variable : {"LOCALAPPDATA", "TEMP"}) {
        const char* const folder = std::getenv(variable);
        if (folder != nullptr && folder[0] != '\0') return folder;
    }
    return {};
}

std::FILE* OpenStateFile(const std::string& name) {
    const std::string folder = StateFolder();
    return folder.empty() ? nullptr : std::fopen((folder + '/' + name).c_str(), "a");
}

}  // namespace statusmon
