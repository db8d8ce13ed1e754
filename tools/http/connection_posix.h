// One connection of a visitor: what it may send, and how long it may take.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>

namespace http {

/// Reads and writes a connected socket, which it does not close.
class Connection final {
  public:
    static constexpr size_t kMostReceived = size_t{96} * 1024;  // head and body of the one request
    static constexpr std::chrono::seconds kLongestRequest{5};   // from the first byte to the last
    static constexpr std::chrono::seconds kLongestWrite{5};     // of each piece of the answer

    explicit Connection(int socket) : socket_(socket) {}

    /// Waits for bytes; what is there of at most `size`, 0 for the end, negative when time or bytes are used
    /// up.
    [[nodiscard]] ptrdiff_t Read(char* to, size_t size);
    /// Negative when the other side does not take them in time.
    [[nodiscard]] ptrdiff_t Write(const char* from, size_t size) const;
    /// Whether the other side is still there and reading.
    [[nodiscard]] bool TakesMore() const;
    /// Says that no more comes, and lets the other side read it: an end with bytes unread would throw the
    /// answer away.
    void Finish() const;
    [[nodiscard]] int Socket() const { return socket_; }

  private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] bool Fill();

    int socket_;
    Clock::time_point end_ = Clock::now() + kLongestRequest;
    std::array<char, 4096> buffer_;
    size_t at_ = 0;
    size_t filled_ = 0;
    size_t received_ = 0;
};

}  // namespace http
