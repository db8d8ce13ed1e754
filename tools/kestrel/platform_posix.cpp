// Signals, descriptors and the rights of folders.
#include "kestrel/platform.h"

#include <dlfcn.h>
#include <fmt/core.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace cli::platform {
namespace {

// Read by the signal handler: complete before the handler is installed, never changed and never destroyed.
struct LastWords {
    std::string out;
    std::string error;
    int exitStatus;
};
const LastWords* lastWords = nullptr;

void WriteAll(int descriptor, const std::string& text) {
    size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(descriptor, text.data() + written, text.size() - written);
        if (count <= 0) return;
        written += static_cast<size_t>(count);
    }
}

// Neither buffers are flushed nor destructors run: the thread may hold any lock of the library at this
// moment. The channel is built for clients that end in the middle of an exchange.
void OnInterrupt(int) {
    WriteAll(STDOUT_FILENO, lastWords->out);
    WriteAll(STDERR_FILENO, lastWords->error);
    _exit(lastWords->exitStatus);
}

// Lets an interrupt end a wait and nothing else, as long as it lives. The signal is blocked outside the wait
// itself, so that none is missed between the look at it and the wait.
class InterruptEndsWait final {
  public:
    InterruptEndsWait() {
        sigset_t interrupt;
        sigemptyset(&interrupt);
        sigaddset(&interrupt, SIGINT);
        sigprocmask(SIG_BLOCK, &interrupt, &maskBefore_);
        struct sigaction ignoring {};
        ignoring.sa_handler = [](int) {};
        sigemptyset(&ignoring.sa_mask);
        sigaction(SIGINT, &ignoring, &actionBefore_);
    }
    ~InterruptEndsWait() {
        sigaction(SIGINT, &actionBefore_, nullptr);
        sigprocmask(SIG_SETMASK, &maskBefore_, nullptr);
    }
    InterruptEndsWait(const InterruptEndsWait&) = delete;
    InterruptEndsWait& operator=(const InterruptEndsWait&) = delete;

    [[nodiscard]] const sigset_t* MaskOfWait() const { return &maskBefore_; }

  private:
    sigset_t maskBefore_{};
    struct sigaction actionBefore_ {};
};

}  // namespace

void KeepLineEnds() {}

void EndOnInterrupt(std::string outText, std::string errorText, int exitStatus) {
    static const LastWords words{std::move(outText), std::move(errorText), exitStatus};
    lastWords = &words;
    struct sigaction action {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

WaitEnd WaitForUser(std::optional<std::chrono::milliseconds> time) {
    const InterruptEndsWait interruptEndsWait;
    pollfd input{STDIN_FILENO, POLLIN, 0};
    timespec limit{};
    if (time) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(*time);
        limit.tv_sec = seconds.count();
        limit.tv_nsec = std::chrono::nanoseconds(*time - seconds).count();
    }
    const int ready = ppoll(&input, time ? 0 : 1, time ? &limit : nullptr, interruptEndsWait.MaskOfWait());
    if (ready < 0) return WaitEnd::Interrupt;
    return ready > 0 ? WaitEnd::Enter : WaitEnd::Time;
}

// winport refuses a home of its own choice that others can enter; one of WINPORT_HOME it takes as it is, and
// gives its own folders below it the same rights.
std::string OpenHomeWarning() {
    constexpr mode_t kEveryAccount = S_IROTH | S_IXOTH;
    const char* const home = std::getenv("WINPORT_HOME");
    struct stat status {};
    if (home == nullptr || *home == '\0' || stat(home, &status) != 0 || (status.st_mode & kEveryAccount) == 0)
        return {};
    return fmt::format(
        "every account of this computer can read what the programs and the printers tell one another: {0} "
        "has "
        "the mode {1:o}; close it with `chmod -R o-rwx {0}`, and give the accounts that share it a group",
        home, status.st_mode & 07777);
}

std::string InstalledLibrary(const std::string& product) {
    return "lib" + product + "SDK.so." KESTREL_MAJOR;
}

std::filesystem::path SystemLibrary() {
    Dl_info library{};
    if (dladdr(dlsym(RTLD_DEFAULT, "GetModuleFileNameW"), &library) == 0) return {};
    const std::filesystem::path path = library.dli_fname;
    return std::filesystem::weakly_canonical(path.parent_path()) / path.filename();
}

// An interrupt goes to both processes; the other one decides what it means.
std::optional<int> RunProgram(const std::vector<std::string>& words, const Variables& variables) {
    for (const auto& [name, value] : variables) {
        if (value.empty()) {
            unsetenv(name.c_str());
        } else {
            setenv(name.c_str(), value.c_str(), 1);
        }
    }
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    pid_t process = 0;
    if (posix_spawnp(&process, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0) return {};
    const InterruptEndsWait notThisProcess;
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void EndWithoutUnloading(int exitStatus) {
    _exit(exitStatus);
}

}  // namespace cli::platform
