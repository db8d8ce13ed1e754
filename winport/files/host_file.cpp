#include "winport/files/host_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "winport/files/error_map.h"
#include "winport/text/utf.h"

namespace winport {

bool IsWindowsFileName(std::u16string_view path) {
    return path.find_first_of(u"<>\"|?*") == std::u16string_view::npos;
}

DWORD ErrorOfPath(int number, const std::string& hostPath) {
    if (number != ENOENT) return ErrorFromErrno(number);
    const std::size_t end = hostPath.find_last_not_of('/');
    const std::size_t slash = end == std::string::npos ? end : hostPath.find_last_of('/', end);
    if (slash == std::string::npos || slash == 0) return ERROR_FILE_NOT_FOUND;
    struct stat status = {};
    const bool folderIsThere = ::stat(hostPath.substr(0, slash).c_str(), &status) == 0;
    return folderIsThere ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

Descriptor OpenForReading(std::u16string_view path, DWORD& error) {
    error = ERROR_SUCCESS;
    if (path.empty()) {
        error = ERROR_PATH_NOT_FOUND;
        return {};
    }
    if (!IsWindowsFileName(path)) {
        error = ERROR_INVALID_NAME;
        return {};
    }
    const std::string hostPath = ToHostPath(path);
    // Without O_NONBLOCK a pipe of that name would hold the caller until somebody writes into it.
    Descriptor file = OpenFile(hostPath, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!file) {
        error = ErrorOfPath(errno, hostPath);
        return {};
    }
    const auto status = FileStatus(file);
    if (!status) {
        error = ErrorFromErrno(errno);
        return {};
    }
    if (S_ISREG(status->st_mode)) return file;
    error = ERROR_ACCESS_DENIED;
    return {};
}

int MakeFolders(const std::string& path, mode_t mode) {
    struct stat found = {};
    if (::stat(path.c_str(), &found) == 0) return 0;
    std::size_t end = 0;
    do {
        end = path.find('/', end + 1);
        const std::string folder = path.substr(0, end);
        if (::mkdir(folder.c_str(), 0700) == 0) {
            if (::chmod(folder.c_str(), mode) != 0) return errno;
        } else if (errno != EEXIST) {
            // A folder on the way may refuse writing or be read-only and yet be there.
            const int failure = errno;
            struct stat status = {};
            if (::stat(folder.c_str(), &status) != 0) return failure;
        }
    } while (end != std::string::npos);
    return 0;
}

}  // namespace winport
