#include "winport/files/own_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "winport/files/retry.h"

namespace winport {

namespace {

bool TryToHold(const Descriptor& folder) {
    int result;
    do {
        result = ::flock(folder.Get(), LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

std::string PathIn(const std::string& folder, const std::string& name) {
    return folder + '/' + name;
}

}  // namespace

HeldFolder::HeldFolder(const std::string& folder) : held_(OpenFile(folder, O_RDONLY | O_DIRECTORY)) {
    if (held_ && !RetryWhileHeld([this] { return TryToHold(held_); })) held_.Reset();
}

// Not left to the closing: a child that was forked meanwhile has the descriptor too.
HeldFolder::~HeldFolder() {
    if (held_) ::flock(held_.Get(), LOCK_UN);
}

Descriptor MakeOwnFile(const std::string& folder, const std::string& name) {
    struct stat status = {};
    if (::stat(folder.c_str(), &status) != 0) return {};
    Descriptor file = OpenFile(PathIn(folder, name), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (file && ::fchmod(file.Get(), status.st_mode & 0666) != 0) file.Reset();
    return file;
}

// Not O_CREAT alone: in a folder with the sticky bit the kernel refuses it for another account's file.
Descriptor OpenOrMakeOwnFile(const std::string& folder, const std::string& name) {
    Descriptor file = OpenFile(PathIn(folder, name), O_RDWR | O_NOFOLLOW | O_NONBLOCK);
    return file || errno != ENOENT ? std::move(file) : MakeOwnFile(folder, name);
}

}  // namespace winport
