#include "winport/files/descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace winport {

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    if (this != &other) {
        Reset();
        number_ = other.Release();
    }
    return *this;
}

int Descriptor::Release() {
    return std::exchange(number_, -1);
}

void Descriptor::Reset() {
    if (number_ < 0) return;
    const int savedError = errno;
    // Never repeated: the kernel frees the number even when a signal interrupts close().
    ::close(Release());
    errno = savedError;
}

Descriptor OpenFile(const std::string& path, int flags, mode_t mode) {
    int number;
    do {
        number = ::open(path.c_str(), flags | O_CLOEXEC, mode);
    } while (number < 0 && errno == EINTR);
    return Descriptor(number);
}

std::optional<struct stat> FileStatus(const Descriptor& file) {
    struct stat status = {};
    if (::fstat(file.Get(), &status) != 0) return std::nullopt;
    return status;
}

std::optional<std::string> ReadUpTo(const Descriptor& file, std::size_t limit) {
    constexpr std::size_t kStep = 16'384;
    std::string contents;
    while (contents.size() < limit) {
        const std::size_t start = contents.size();
        contents.resize(std::min(limit, start + kStep));
        ssize_t count;
        do {
            count = ::read(file.Get(), contents.data() + start, contents.size() - start);
        } while (count < 0 && errno == EINTR);
        if (count < 0) return std::nullopt;
        contents.resize(start + static_cast<std::size_t>(count));
        if (count == 0) break;
    }
    return contents;
}

}  // namespace winport
