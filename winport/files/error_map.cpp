#include "winport/files/error_map.h"

#include <cerrno>

namespace winport {

namespace {

struct ErrorPair {
    int number;
    DWORD error;
};

constexpr ErrorPair kErrors[] = {
    {0, ERROR_SUCCESS},
    {ENOENT, ERROR_FILE_NOT_FOUND},
    {ENOTDIR, ERROR_PATH_NOT_FOUND},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    {EACCES, ERROR_ACCESS_DENIED},
    {EPERM, ERROR_ACCESS_DENIED},
    {EROFS, ERROR_ACCESS_DENIED},
    {EISDIR, ERROR_ACCESS_DENIED},
    {ELOOP, ERROR_ACCESS_DENIED},
    {EBADF, ERROR_INVALID_HANDLE},
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {ENOSPC, ERROR_DISK_FULL},
    {EDQUOT, ERROR_DISK_FULL},
    {EFBIG, ERROR_DISK_FULL},
    {EEXIST, ERROR_ALREADY_EXISTS},
    {EINVAL, ERROR_INVALID_PARAMETER},
    {ESRCH, ERROR_INVALID_PARAMETER},  // Windows reports an unknown process id so
    {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    {EBUSY, ERROR_BUSY},
    {ETXTBSY, ERROR_SHARING_VIOLATION},
    {EAGAIN, ERROR_LOCKED},
    {EDEADLK, ERROR_LOCKED},
    {ETIMEDOUT, ERROR_TIMEOUT},
    {EIO, ERROR_IO_DEVICE},
    {ENOSYS, ERROR_NOT_SUPPORTED},
    {EOPNOTSUPP, ERROR_NOT_SUPPORTED},
    {EFAULT, ERROR_INVALID_ADDRESS},
    {EILSEQ, ERROR_NO_UNICODE_TRANSLATION},
};

}  // namespace

DWORD ErrorFromErrno(int number) {
    for (const ErrorPair& pair : kErrors) {
        if (pair.number == number) return pair.error;
    }
    return ERROR_GEN_FAILURE;
}

void SetLastErrorFromErrno() {
    SetLastError(ErrorFromErrno(errno));
}

}  // namespace winport
