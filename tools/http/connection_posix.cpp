// Every wait has its end, whatever the other side sends or does not send.
#include "http/connection_posix.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace http {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLongestFarewell{500};

bool WaitFor(int socket, short event, milliseconds longest) {
    pollfd one{socket, event, 0};
    int ready = 0;
    do
        ready = poll(&one, 1, static_cast<int>(std::max<int64_t>(longest.count(), 0)));
    while (ready < 0 && errno == EINTR);
    return ready > 0;
}

}  // namespace

ptrdiff_t Connection::Read(char* to, size_t size) {
    if (at_ == filled_ && !Fill()) return -1;
    const size_t count = std::min(size, filled_ - at_);
    std::memcpy(to, buffer_.data() + at_, count);
    at_ += count;
    return static_cast<ptrdiff_t>(count);
}

bool Connection::Fill() {
    const auto left = std::chrono::duration_cast<milliseconds>(end_ - Clock::now());
    if (received_ >= kMostReceived || left.count() <= 0 || !WaitFor(socket_, POLLIN, left)) return false;
    const ssize_t count = recv(socket_, buffer_.data(), buffer_.size(), 0);
    at_ = 0;
    filled_ = count > 0 ? static_cast<size_t>(count) : 0;
    received_ += filled_;
    return count >= 0;
}

ptrdiff_t Connection::Write(const char* from, size_t size) const {
    if (!WaitFor(socket_, POLLOUT, kLongestWrite)) return -1;
    return send(socket_, from, size, MSG_NOSIGNAL | MSG_DONTWAIT);
}

bool Connection::TakesMore() const {
    char byte = 0;
    const ssize_t count = recv(socket_, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    const bool gone = count == 0 || (count < 0 && errno != EAGAIN && errno != EWOULDBLOCK);
    return !gone && WaitFor(socket_, POLLOUT, kLongestWrite);
}

void Connection::Finish() const {
    shutdown(socket_, SHUT_WR);
    const auto end = Clock::now() + kLongestFarewell;
    char rest[4096];
    for (;;) {
        const auto left = std::chrono::duration_cast<milliseconds>(end - Clock::now());
        if (left.count() <= 0 || !WaitFor(socket_, POLLIN, left)) return;
        if (recv(socket_, rest, sizeof(rest), 0) <= 0) return;
    }
}

}  // namespace http
