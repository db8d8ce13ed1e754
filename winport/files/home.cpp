// Whoever can write into these folders can forge kernel objects and registry values of this account, so a
// folder is judged by what was opened, never by its name: another account may have made it first.
#include "winport/files/home.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <windows.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <vector>

#include "winport/files/descriptor.h"
#include "winport/files/error_map.h"
#include "winport/files/host_file.h"
#include "winport/files/own_file.h"

namespace winport {

namespace {

// The folder that is wanted, and the one above it that must be there or is made first.
struct Place {
    std::string parent;
    std::string folder;
    bool chosenByAdministrator = false;
};

// An absolute path from the environment; empty when the variable is unset, empty or relative.
std::string AbsoluteFromEnvironment(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && value[0] == '/' ? value : std::string();
}

// WINPORT_HOME may be relative to the folder the process starts in.
std::string WinportHome() {
    const char* value = std::getenv("WINPORT_HOME");
    if (value == nullptr || value[0] == '\0') return {};
    std::error_code failure;
    const std::filesystem::path path = std::filesystem::absolute(value, failure);
    if (failure) return {};
    std::string text = path.lexically_normal().string();
    while (text.size() > 1 && text.back() == '/')
        text.pop_back();
    return text;
}

std::string UserHome() {
    if (std::string home = AbsoluteFromEnvironment("HOME"); !home.empty()) return home;
    std::vector<char> buffer(16'384);
    passwd record = {};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &record, buffer.data(), buffer.size(), &found) != 0 || found == nullptr)
        return "/";
    return found->pw_dir;
}

bool IsFolder(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

Place KernelPlace() {
    if (const std::string home = WinportHome(); !home.empty()) return {home, home + "/kernel", true};
    // A session folder that is gone (a shell kept over a logout) must not be made anew in its place.
    const std::string session = AbsoluteFromEnvironment("XDG_RUNTIME_DIR");
    if (!session.empty() && IsFolder(session)) return {session, session + "/winport"};
    return {"/dev/shm", "/dev/shm/winport-" + std::to_string(geteuid())};
}

Place StatePlace() {
    if (const std::string home = WinportHome(); !home.empty()) return {home, home + "/state", true};
    std::string parent = AbsoluteFromEnvironment("XDG_STATE_HOME");
    if (parent.empty()) parent = UserHome() + "/.local/state";
    return {parent, parent + "/winport"};
}

// A folder inside a shared home is as open as the home, whatever the umask and the group of the process that
// made it, and gives its own group to what is made in it.
void TakeModeOfParent(const Place& place) {
    struct stat status = {};
    if (::stat(place.parent.c_str(), &status) != 0) return;
    const Descriptor folder = OpenFile(place.folder, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    if (!folder) return;
    const bool ownGroup = ::fchown(folder.Get(), static_cast<uid_t>(-1), status.st_gid) != 0;
    const mode_t group = (status.st_mode & S_IRWXG) != 0 && !ownGroup ? S_ISGID : 0;
    ::fchmod(folder.Get(), (status.st_mode & 07777) | group);
}

DWORD MakePlace(const Place& place) {
    if (const int failure = MakeFolders(place.parent, 0700); failure != 0) return ErrorFromErrno(failure);
    // Another account may have made the folder and be about to open it to this one.
    std::optional<HeldFolder> held;
    if (place.chosenByAdministrator && ::access(place.folder.c_str(), R_OK | W_OK) != 0)
        held.emplace(place.parent);
    if (::mkdir(place.folder.c_str(), 0700) == 0) {
        if (place.chosenByAdministrator) TakeModeOfParent(place);
        return ERROR_SUCCESS;
    }
    return errno == EEXIST ? ERROR_SUCCESS : ErrorFromErrno(errno);
}

DWORD CheckPlace(const Place& place) {
    const Descriptor folder = OpenFile(place.folder, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    if (!folder) return errno == ELOOP || errno == ENOTDIR ? ERROR_ACCESS_DENIED : ErrorFromErrno(errno);
    if (place.chosenByAdministrator) return ERROR_SUCCESS;
    const auto status = FileStatus(folder);
    if (!status) return ErrorFromErrno(errno);
    const bool closedToOthers = (status->st_mode & (S_IRWXG | S_IRWXO)) == 0;
    return status->st_uid == geteuid() && closedToOthers ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

// A place once found good stays for the life of the process and is never destroyed: threads may still use it
// while the process exits. A failure is not remembered; the next call looks again.
const std::string& Publish(std::atomic<const std::string*>& slot, const Place& place) {
    static const std::string kNone;
    DWORD error = MakePlace(place);
    if (error == ERROR_SUCCESS) error = CheckPlace(place);
    if (error != ERROR_SUCCESS) {
        SetLastError(error);
        return kNone;
    }
    auto candidate = std::make_unique<const std::string>(place.folder);
    const std::string* expected = nullptr;
    if (slot.compare_exchange_strong(expected, candidate.get(), std::memory_order_acq_rel))
        return *candidate.release();
    return *expected;
}

std::atomic<const std::string*> kernelDirectory;
std::atomic<const std::string*> stateDirectory;

}  // namespace

const std::string& KernelObjectDirectory() {
    const std::string* known = kernelDirectory.load(std::memory_order_acquire);
    return known != nullptr ? *known : Publish(kernelDirectory, KernelPlace());
}

const std::string& StateDirectory() {
    const std::string* known = stateDirectory.load(std::memory_order_acquire);
    return known != nullptr ? *known : Publish(stateDirectory, StatePlace());
}

}  // namespace winport
