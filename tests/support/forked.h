// A copy of this process that does one thing and ends.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

class Forked final {
  public:
    Forked() = default;
    // What the body gives is its exit code.
    template <typename Body>
    explicit Forked(Body body) {
        std::fflush(stdout);
        id_ = ::fork();
        if (id_ == 0) ::_exit(body());
    }
    Forked(Forked&& other) noexcept { *this = std::move(other); }
    Forked& operator=(Forked&& other) noexcept {
        std::swap(id_, other.id_);
        return *this;
    }
    ~Forked() {
        if (!IsRunning()) return;
        Kill();
        Wait();
    }

    [[nodiscard]] pid_t Id() const { return id_; }
    // False for good once it has been seen to have ended.
    [[nodiscard]] bool IsRunning() {
        if (id_ > 0 && ::waitpid(id_, nullptr, WNOHANG) != 0) id_ = -1;
        return id_ > 0;
    }
    void Kill() const { ::kill(id_, SIGKILL); }
    // The exit code; 128 + n when signal n ended it.
    int Wait() {
        int status = 0;
        const bool ended = id_ > 0 && ::waitpid(std::exchange(id_, -1), &status, 0) > 0;
        if (!ended) return -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

  private:
    pid_t id_ = -1;
};

// What the body, in a copy of this process, says of itself.
template <typename Body>
bool HoldsInChild(Body body) {
    constexpr unsigned kPatienceSeconds = 30;
    return Forked([&] {
               ::alarm(kPatienceSeconds);
               return body() ? 0 : 1;
           }).Wait() == 0;
}
