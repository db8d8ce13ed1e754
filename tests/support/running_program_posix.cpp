#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>

#include "running_program.h"

extern char** environ;

namespace {

class PosixProgram final : public RunningProgram {
  public:
    explicit PosixProgram(std::vector<std::string> commandLine) {
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
        const int error = posix_spawn(&id_, arguments[0], &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(in[0]);
        close(out[1]);
        input_ = in[1];
        output_ = out[0];
        if (error == 0) return;
        CloseBoth();
        throw std::runtime_error("cannot start " + commandLine[0]);
    }
    ~PosixProgram() override { CloseBoth(); }

    [[nodiscard]] unsigned Id() const override { return static_cast<unsigned>(id_); }

    [[nodiscard]] std::optional<int> ExitCode() override {
        int status = 0;
        if (waitpid(id_, &status, WNOHANG) != id_) return std::nullopt;
        return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }

    void Write(const std::string& text) override {
        for (size_t done = 0; done < text.size();) {
            const ssize_t count = write(input_, text.data() + done, text.size() - done);
            if (count < 0 && errno != EINTR) return;
            if (count > 0) done += static_cast<size_t>(count);
        }
    }

    bool Read(std::string& text, std::chrono::milliseconds patience) override {
        pollfd file = {output_, POLLIN, 0};
        if (poll(&file, 1, static_cast<int>(patience.count())) <= 0) return false;
        std::array<char, 65536> buffer;
        const ssize_t count = read(output_, buffer.data(), buffer.size());
        if (count <= 0) return false;
        text.append(buffer.data(), static_cast<size_t>(count));
        return true;
    }

    void Kill() override { kill(id_, SIGKILL); }
    void Terminate() override { kill(id_, SIGTERM); }
    void Stop() override { kill(id_, SIGSTOP); }
    void Continue() override { kill(id_, SIGCONT); }

  private:
    void CloseBoth() const {
        close(input_);
        close(output_);
    }

    pid_t id_ = -1;
    int input_ = -1;
    int output_ = -1;
};

}  // namespace

std::unique_ptr<RunningProgram> RunningProgram::Start(const std::vector<std::string>& commandLine) {
    return std::make_unique<PosixProgram>(commandLine);
}
