#include "engine/process.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace {

void EndWithParent() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

std::vector<char*> Arguments(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    return arguments;
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    const char* const prefix = std::getenv("KESTREL_BENCH_PREFIX");
    path_ = std::string(prefix != nullptr ? prefix : "/dev/shm/kestrel-bench-") + "XXXXXX";
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm", ignored))
        if (entry.path().native().starts_with(path_)) std::filesystem::remove_all(entry.path(), ignored);
}

ChildProcess::ChildProcess(const std::function<void()>& body) {
    std::fflush(nullptr);
    id_ = fork();
    if (id_ < 0) throw std::runtime_error("fork failed");
    if (id_ > 0) return;
    EndWithParent();
    setpgid(0, 0);
    try {
        body();
        _exit(0);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "exchanges: %s\n", failure.what());
        _exit(1);
    }
}

ChildProcess::~ChildProcess() {
    if (id_ == 0) return;
    kill(-id_, SIGKILL);
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
}

bool ChildProcess::HasEnded() const {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(id_), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid != 0;
}

bool ChildProcess::Join() {
    int status = 0;
    waitpid(std::exchange(id_, 0), &status, 0);
    return status == 0;
}

pid_t Spawn(const std::vector<std::string>& words) {
    const pid_t id = fork();
    if (id < 0) throw std::runtime_error("fork failed");
    if (id > 0) return id;
    EndWithParent();
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    Become(words);
}

void Run(const std::vector<std::string>& words) {
    int status = 0;
    waitpid(Spawn(words), &status, 0);
    if (status != 0) throw std::runtime_error(words[0] + " failed");
}

void Become(const std::vector<std::string>& words) {
    execvp(words[0].c_str(), Arguments(words).data());
    std::fprintf(stderr, "exchanges: cannot start %s\n", words[0].c_str());
    _exit(127);
}

void KeepOnProcessor(unsigned index) {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(index, &set);
    if (sched_setaffinity(0, sizeof(set), &set) != 0) throw std::runtime_error("no such processor");
}

uint16_t FreePort() {
    const int file = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    const bool bound = bind(file, reinterpret_cast<sockaddr*>(&address), length) == 0 &&
                       getsockname(file, reinterpret_cast<sockaddr*>(&address), &length) == 0;
    close(file);
    if (!bound) throw std::runtime_error("no free port");
    return ntohs(address.sin_port);
}

uint64_t ProcessorTime(pid_t process) {
    clockid_t clock;
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0) return 0;
    return static_cast<uint64_t>(time.tv_sec) * 1'000'000'000 + static_cast<uint64_t>(time.tv_nsec);
}
