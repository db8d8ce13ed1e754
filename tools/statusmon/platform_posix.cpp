// The log lies among winport's state, which winport refuses for ever when it finds it made with other rights
// than its own: so winport makes the folder, and this file knows only where it is (winport/README.md).
#include "statusmon/platform.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <windows.h>

#include <cstdlib>

namespace statusmon {
namespace {

std::string Environment(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr ? value : "";
}

std::string UserHome() {
    if (std::string home = Environment("HOME"); home.starts_with('/')) return home;
    const passwd* const record = getpwuid(geteuid());
    return record != nullptr ? record->pw_dir : "";
}

// What any look at the registry does.
void MakeStateFolder() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, TEXT("Software"), 0, KEY_READ, &key) == ERROR_SUCCESS)
        RegCloseKey(key);
}

}  // namespace

bool HasOutput() {
    struct stat output {};
    if (fstat(STDOUT_FILENO, &output) != 0) return false;
    return !S_ISCHR(output.st_mode) || isatty(STDOUT_FILENO) == 1;
}

std::string StateFolder() {
    if (const std::string home = Environment("WINPORT_HOME"); !home.empty()) return home + "/state";
    if (const std::string state = Environment("XDG_STATE_HOME"); state.starts_with('/'))
        return state + "/winport";
    return UserHome() + "/.local/state/winport";
}

// In a shared home another account can have put a link there, to a file that is not the log.
std::FILE* OpenStateFile(const std::string& name) {
    MakeStateFolder();
    const int file = open((StateFolder() + '/' + name).c_str(),
                          O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    return file >= 0 ? fdopen(file, "a") : nullptr;
}

}  // namespace statusmon
