#include "winport/handles/lock_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>

#include "winport/files/error_map.h"

namespace winport {

bool LockFile::Open(const std::string& folder) {
    const std::string path = folder + "/lock";
    struct stat status = {};
    const mode_t mode = ::stat(folder.c_str(), &status) == 0 ? status.st_mode & 0666 : 0600;
    file_ = OpenFile(path, O_RDWR | O_CREAT | O_NOFOLLOW, mode);
    if (file_) return true;
    SetLastError(errno == ELOOP ? ERROR_ACCESS_DENIED : ErrorFromErrno(errno));
    return false;
}

bool LockFile::Set(off_t byte, short mode) const {
    struct flock lock = {};
    lock.l_type = mode;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    int result;
    do {
        result = ::fcntl(file_.Get(), F_OFD_SETLK, &lock);
    } while (result < 0 && errno == EINTR);
    return result == 0;
}

bool LockFile::TryExclusive(off_t byte) const {
    return Set(byte, F_WRLCK);
}

bool LockFile::TryShared(off_t byte) const {
    return Set(byte, F_RDLCK);
}

void LockFile::Unlock(off_t byte) const {
    Set(byte, F_UNLCK);
}

bool LockFile::IsHeldElsewhere(off_t byte) const {
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    // A question that cannot be asked is answered with "alive": nobody's lock is ever taken on a guess.
    return ::fcntl(file_.Get(), F_OFD_GETLK, &lock) != 0 || lock.l_type != F_UNLCK;
}

FolderLock::FolderLock(const LockFile& file) : file_(file) {
    constexpr long kFirstPauseNs = 20'000;
    constexpr long kLongestPauseNs = 2'000'000;
    constexpr long kLimitNs = 5'000'000'000;
    long pause = kFirstPauseNs;
    for (long waited = 0; !held_; waited += pause, pause = std::min(pause * 2, kLongestPauseNs)) {
        held_ = file_.TryExclusive(kFolderByte);
        if (held_) return;
        if (waited >= kLimitNs || (errno != EAGAIN && errno != EACCES)) break;
        const timespec rest = {0, pause};
        nanosleep(&rest, nullptr);
    }
    SetLastError(errno == EAGAIN || errno == EACCES ? ERROR_TIMEOUT : ErrorFromErrno(errno));
}

FolderLock::~FolderLock() {
    if (held_) file_.Unlock(kFolderByte);
}

}  // namespace winport
