#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>

#include "child_process.h"

extern char** environ;

void ChildProcess::Start(std::vector<std::string> commandLine) {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    std::vector<char*> arguments;
    for (std::string& word : commandLine)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t id = 0;
    const int error = posix_spawn(&id, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    program_ = {static_cast<unsigned>(id), 0, in[1], out[0]};
    if (error == 0) return;
    Close();
    throw std::runtime_error("cannot start " + commandLine[0]);
}

std::optional<int> ChildProcess::ExitCode() const {
    int status = 0;
    if (waitpid(static_cast<pid_t>(Id()), &status, WNOHANG) <= 0) return std::nullopt;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void ChildProcess::WriteLine(const std::string& line) {
    const std::string text = line + '\n';
    for (size_t done = 0; done < text.size();) {
        const ssize_t count = write(static_cast<int>(program_.input), text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR) return;
        if (count > 0) done += static_cast<size_t>(count);
    }
}

bool ChildProcess::Read(std::chrono::milliseconds patience) {
    const int output = static_cast<int>(program_.output);
    pollfd file = {output, POLLIN, 0};
    if (poll(&file, 1, static_cast<int>(patience.count())) <= 0) return false;
    std::array<char, 65536> buffer;
    const ssize_t count = read(output, buffer.data(), buffer.size());
    if (count > 0) pending_.append(buffer.data(), static_cast<size_t>(count));
    return count > 0;
}

void ChildProcess::Act(Action action) const {
    constexpr int kSignals[] = {SIGKILL, SIGTERM, SIGSTOP, SIGCONT};
    kill(static_cast<pid_t>(Id()), kSignals[static_cast<size_t>(action)]);
}

void ChildProcess::Close() const {
    close(static_cast<int>(program_.input));
    close(static_cast<int>(program_.output));
}
