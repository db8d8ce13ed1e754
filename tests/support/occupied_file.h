// A file in winport's object folder that some living process seems to use.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "winport/handles/object_page.h"

// A page that would be accepted as that of "Global\<name>", and zeros behind it; cut to `fileSize`.
inline std::string PageOf(std::string_view name, winport::ObjectKind kind, uint64_t dataSize,
                          size_t fileSize) {
    winport::ObjectPage page = {};
    page.magic = winport::kPageMagic;
    page.layoutVersion = winport::kLayoutVersion;
    page.kind = kind;
    page.dataSize = dataSize;
    const std::u16string whole = u"Global\\" + std::u16string(name.begin(), name.end());
    page.nameLength = static_cast<uint32_t>(whole.size());
    whole.copy(page.name, whole.size());
    std::string file(fileSize, '\0');
    std::memcpy(file.data(), &page, std::min(sizeof(page), fileSize));
    return file;
}

class OccupiedFile final {
  public:
    // "Global\<name>" in the folder, which has been used before.
    OccupiedFile(const std::string& folder, const std::string& name, std::string_view bytes)
        : path_(folder + "/global." + name) {
        const int file = ::open(path_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        struct stat status = {};
        const bool written = ::write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
        locks_ = ::open((folder + "/lock").c_str(), O_RDWR | O_CLOEXEC);
        struct flock lock = {};
        lock.l_type = F_RDLCK;
        lock.l_start = ::fstat(file, &status) == 0 ? static_cast<off_t>(status.st_ino) : 0;
        lock.l_len = 1;
        ::close(file);
        if (!written || ::fcntl(locks_, F_OFD_SETLK, &lock) != 0)
            throw std::runtime_error("cannot occupy " + path_);
    }
    OccupiedFile(const OccupiedFile&) = delete;
    OccupiedFile& operator=(const OccupiedFile&) = delete;
    ~OccupiedFile() {
        ::close(locks_);
        ::unlink(path_.c_str());
    }

  private:
    std::string path_;
    int locks_ = -1;
};
