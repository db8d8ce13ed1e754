#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <thread>

#include "child_process.h"

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

std::vector<std::string> MergedEnvironment(const Environment& extra) {
    std::vector<std::string> merged;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        bool replaced = false;
        for (const auto& [name, value] : extra)
            replaced = replaced || text.rfind(name + '=', 0) == 0;
        if (!replaced) merged.push_back(text);
    }
    for (const auto& [name, value] : extra)
        merged.push_back(name + '=' + value);
    return merged;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& commandLine, const Environment& extra) {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    std::vector<std::string> arguments = commandLine;
    std::vector<std::string> environment = MergedEnvironment(extra);
    pid_t id = -1;
    const int error = posix_spawn(&id, commandLine[0].c_str(), &actions, nullptr, Pointers(arguments).data(),
                                  Pointers(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    input_ = in[1];
    output_ = out[0];
    if (error != 0) {
        CloseAll();
        throw std::runtime_error("cannot start " + commandLine[0]);
    }
    id_ = id;
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept {
    *this = std::move(other);
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    std::swap(id_, other.id_);
    std::swap(input_, other.input_);
    std::swap(output_, other.output_);
    std::swap(pending_, other.pending_);
    std::swap(exitCode_, other.exitCode_);
    return *this;
}

ChildProcess::~ChildProcess() {
    if (IsRunning()) {
        Kill();
        Wait();
    }
    CloseAll();
}

void ChildProcess::CloseAll() {
    for (int* file : {&input_, &output_}) {
        if (*file >= 0) close(*file);
        *file = -1;
    }
}

void ChildProcess::Reap(int status) {
    exitCode_ = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

bool ChildProcess::IsRunning() {
    if (id_ < 0 || exitCode_) return false;
    int status = 0;
    if (waitpid(id_, &status, WNOHANG) == id_) Reap(status);
    return !exitCode_;
}

unsigned ChildProcess::Id() const {
    return static_cast<unsigned>(id_);
}

void ChildProcess::WriteLine(const std::string& line) {
    const std::string text = line + '\n';
    for (size_t done = 0; done < text.size();) {
        const ssize_t count = write(input_, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR) return;
        if (count > 0) done += static_cast<size_t>(count);
    }
}

bool ChildProcess::FillPending(std::chrono::milliseconds patience) {
    pollfd file = {output_, POLLIN, 0};
    if (poll(&file, 1, static_cast<int>(patience.count())) <= 0) return false;
    std::array<char, 65536> buffer;
    const ssize_t count = read(output_, buffer.data(), buffer.size());
    if (count <= 0) return false;
    pending_.append(buffer.data(), static_cast<size_t>(count));
    return true;
}

std::optional<std::string> ChildProcess::ReadLine(std::chrono::milliseconds patience) {
    const Clock::time_point deadline = Clock::now() + patience;
    for (;;) {
        if (const size_t end = pending_.find('\n'); end != std::string::npos) {
            std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            return line;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || !FillPending(left)) return std::nullopt;
    }
}

std::string ChildProcess::ReadAll() {
    while (FillPending(std::chrono::seconds(60))) {
    }
    return std::exchange(pending_, {});
}

void ChildProcess::Kill() {
    if (IsRunning()) kill(id_, SIGKILL);
}

void ChildProcess::Terminate() {
    if (IsRunning()) kill(id_, SIGTERM);
}

void ChildProcess::Stop() {
    if (IsRunning()) kill(id_, SIGSTOP);
}

void ChildProcess::Continue() {
    if (IsRunning()) kill(id_, SIGCONT);
}

int ChildProcess::Wait(std::chrono::milliseconds patience) {
    const Clock::time_point deadline = Clock::now() + patience;
    while (IsRunning() && Clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    if (IsRunning()) {
        Kill();
        int status = 0;
        waitpid(id_, &status, 0);
        exitCode_ = -1;
    }
    return exitCode_.value_or(-1);
}
