#include <dirent.h>
#include <fcntl.h>
#include <psapi.h>
#include <sys/types.h>

#include <charconv>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "winport/files/descriptor.h"
#include "winport/files/error_map.h"

namespace winport {

namespace {

struct FolderCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, FolderCloser>;

// The id that a folder of /proc is named after; nothing for the other entries.
std::optional<DWORD> IdOfEntry(const char* name) {
    DWORD id = 0;
    const char* end = name + std::strlen(name);
    const auto parsed = std::from_chars(name, end, id);
    if (parsed.ptr != end || parsed.ec != std::errc{}) return std::nullopt;
    return id;
}

// The n-th field of /proc/<id>/stat as counted in its manual; only from 3 on, behind the program's name,
// which is in parentheses and may itself hold blanks and parentheses.
std::string_view StatField(std::string_view stat, int n) {
    const std::size_t nameEnd = stat.rfind(')');
    if (nameEnd == std::string_view::npos) return {};
    stat.remove_prefix(nameEnd + 1);
    for (int field = 3; !stat.empty(); ++field) {
        stat.remove_prefix(1);
        const std::size_t end = stat.find(' ');
        if (field == n) return stat.substr(0, end);
        if (end == std::string_view::npos) break;
        stat.remove_prefix(end);
    }
    return {};
}

// An ended process that waits for its parent to ask for the exit code is gone for everybody else. A process
// whose first thread alone has ended shows the same state, but counts further threads.
bool IsAlive(const char* id) {
    const Descriptor file = OpenFile(std::string("/proc/") + id + "/stat", O_RDONLY);
    if (!file) return false;
    const auto stat = ReadUpTo(file, 4096);
    if (!stat) return false;
    const std::string_view state = StatField(*stat, 3);
    const std::string_view threads = StatField(*stat, 20);
    const bool ended = state == "Z" || state == "X";
    return !state.empty() && (!ended || (threads != "0" && threads != "1"));
}

}  // namespace

}  // namespace winport

BOOL EnumProcesses(DWORD* processIds, DWORD size, LPDWORD needed) {
    if (needed == nullptr || (processIds == nullptr && size != 0)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const winport::Folder processes(::opendir("/proc"));
    if (!processes) {
        winport::SetLastErrorFromErrno();
        return FALSE;
    }
    const DWORD capacity = size / sizeof(DWORD);
    DWORD count = 0;
    while (count < capacity) {
        const dirent* entry = ::readdir(processes.get());
        if (entry == nullptr) break;
        const auto id = winport::IdOfEntry(entry->d_name);
        if (id && winport::IsAlive(entry->d_name)) processIds[count++] = *id;
    }
    *needed = count * sizeof(DWORD);
    return TRUE;
}
