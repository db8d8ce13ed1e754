#include <sys/stat.h>
#include <windows.h>

#include <cerrno>
#include <string>

#include "winport/files/error_map.h"
#include "winport/files/host_file.h"
#include "winport/text/utf.h"

namespace {

DWORD NoAttributes(DWORD error) {
    SetLastError(error);
    return INVALID_FILE_ATTRIBUTES;
}

}  // namespace

DWORD GetFileAttributesW(LPCWSTR path) {
    if (path == nullptr || path[0] == u'\0') return NoAttributes(ERROR_PATH_NOT_FOUND);
    if (!winport::IsWindowsFileName(path)) return NoAttributes(ERROR_INVALID_NAME);
    const std::string hostPath = winport::ToHostPath(path);
    struct stat status = {};
    if (::stat(hostPath.c_str(), &status) != 0) return NoAttributes(winport::ErrorOfPath(errno, hostPath));
    const bool readOnly = (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
    DWORD attributes = S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : 0;
    if (readOnly) attributes |= FILE_ATTRIBUTE_READONLY;
    return attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL;
}
