#include "statusmon/platform.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace statusmon {

bool HasOutput() {
    struct stat output {};
    if (fstat(STDOUT_FILENO, &output) != 0) return false;
    return !S_ISCHR(output.st_mode) || isatty(STDOUT_FILENO) == 1;
}

std::string StateFolder() {
    struct Place {
        const char* variable;
        const char* below;
    };
    // In the order in which they count.
    constexpr Place kPlaces[] = {
        {"WINPORT_HOME", "/state"}, {"XDG_STATE_HOME", "/winport"}, {"HOME", "/.local/state/winport"}};
    for (const Place& place : kPlaces) {
        const char* const folder = std::getenv(place.variable);
        if (folder != nullptr && folder[0] != '\0') return std::string(folder) + place.below;
    }
    return "/tmp";
}

}  // namespace statusmon
