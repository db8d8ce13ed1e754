#include "winport/handles/lock_file.h"

#include <fcntl.h>
#include <windows.h>

#include <cerrno>

#include "winport/files/error_map.h"
#include "winport/files/own_file.h"
#include "winport/files/retry.h"

namespace winport {

namespace {

constexpr const char* kName = "lock";

DWORD ErrorOfHolding(int number) {
    return number == EBUSY ? ERROR_TIMEOUT : ErrorFromErrno(number);
}

}  // namespace

bool LockFile::Open(const std::string& folder) {
    file_ = OpenFile(folder + '/' + kName, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
    if (file_) return true;
    // It is missing, or still about to be as open as its folder.
    const HeldFolder held(folder);
    if (held) file_ = OpenOrMakeOwnFile(folder, kName);
    if (file_) return true;
    SetLastError(ErrorOfHolding(errno));
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

FolderLock::FolderLock(const LockFile& file)
    : file_(file), held_(RetryWhileHeld([&file] { return file.TryExclusive(kFolderByte); })) {
    if (!held_) SetLastError(ErrorOfHolding(errno));
}

FolderLock::~FolderLock() {
    if (held_) file_.Unlock(kFolderByte);
}

}  // namespace winport
