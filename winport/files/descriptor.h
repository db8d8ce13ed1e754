// A Linux file descriptor that is closed with its owner, and the few checked calls made on one.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <optional>
#include <string>

namespace winport {

class Descriptor final {
  public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { Reset(); }

    [[nodiscard]] int Get() const { return number_; }
    [[nodiscard]] explicit operator bool() const { return number_ >= 0; }
    [[nodiscard]] int Release();
    // Leaves errno alone, so that it can run between a failed call and the report of it.
    void Reset();

  private:
    int number_ = -1;
};

// open() with O_CLOEXEC added, repeated after a signal. No descriptor on failure, errno says why.
[[nodiscard]] Descriptor OpenFile(const std::string& path, int flags, mode_t mode = 0);

// The status of an open file; nothing on failure, errno says why.
[[nodiscard]] std::optional<struct stat> FileStatus(const Descriptor& file);

// The file's contents from the current position, at most `limit` bytes. Nothing on failure, errno says why.
[[nodiscard]] std::optional<std::string> ReadUpTo(const Descriptor& file, std::size_t limit);

}  // namespace winport
