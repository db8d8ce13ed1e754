// A structure in a file of the place, mapped by both sides.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <new>
#include <stdexcept>
#include <string>

template <typename Content>
class SharedFile final {
  public:
    /// The file's bytes are zero when it is made, and so is the content.
    explicit SharedFile(const std::string& path) {
        const int file = open(path.c_str(), O_RDWR | O_CREAT, 0600);
        if (file < 0 || ftruncate(file, sizeof(Content)) != 0)
            throw std::runtime_error("no shared file " + path);
        void* const view =
            mmap(nullptr, sizeof(Content), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, file, 0);
        close(file);
        if (view == MAP_FAILED) throw std::runtime_error("no shared memory");
        content_ = static_cast<Content*>(view);
    }
    SharedFile(const SharedFile&) = delete;
    SharedFile& operator=(const SharedFile&) = delete;
    ~SharedFile() { munmap(content_, sizeof(Content)); }

    Content* operator->() const { return content_; }
    Content& operator*() const { return *content_; }

  private:
    Content* content_;
};
