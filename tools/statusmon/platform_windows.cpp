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
    return ".";
}

}  // namespace statusmon
