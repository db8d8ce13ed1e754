// What one request costs, beside what any two processes of this machine pay: GetFaxRedials against a process
// that only polls shared memory, and against a Unix stream socket. Rounds of the three are interleaved, and
// the ratios are those of the medians.
//
//   round_trip [ROUNDS [EXCHANGES]]
#include <kestrel/sdk.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

// A process that ends with this one's scope, and with this process if that is killed.
class Peer final {
  public:
    explicit Peer(pid_t id) : id_(id) {}
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    ~Peer() {
        kill(id_, SIGTERM);
        waitpid(id_, nullptr, 0);
    }

  private:
    pid_t id_;
};

template <typename Body>
pid_t Fork(Body body) {
    const pid_t id = fork();
    if (id == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        body();
        _exit(0);
    }
    if (id < 0) throw std::runtime_error("fork failed");
    return id;
}

struct Cells {
    alignas(64) std::atomic<uint32_t> request;
    alignas(64) std::atomic<uint32_t> reply;
};

// The limit: two processes that do nothing but look at memory.
class PollingLimit final {
  public:
    PollingLimit()
        : cells_(static_cast<Cells*>(
              mmap(nullptr, sizeof(Cells), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))),
          peer_(Fork([this] { Serve(); })) {}
    ~PollingLimit() { cells_->request.store(kEnd); }
    PollingLimit(const PollingLimit&) = delete;
    PollingLimit& operator=(const PollingLimit&) = delete;

    // The peer looks only while a round of this kind runs, so that it takes no processor from the others.
    void Begin() { Exchange(kWake); }
    void End() { cells_->request.store(kRest, std::memory_order_release); }
    bool Exchange() { return Exchange(next_ = next_ % kLast + 1); }

  private:
    static constexpr uint32_t kLast = 1u << 30;
    static constexpr uint32_t kRest = kLast + 1;
    static constexpr uint32_t kWake = kLast + 2;
    static constexpr uint32_t kEnd = kLast + 3;

    bool Exchange(uint32_t value) {
        cells_->request.store(value, std::memory_order_release);
        while (cells_->reply.load(std::memory_order_acquire) != value) {
        }
        return true;
    }

    void Serve() {
        for (uint32_t last = 0;;) {
            const uint32_t value = cells_->request.load(std::memory_order_acquire);
            if (value == kEnd) return;
            if (value == kRest) usleep(1000);
            if (value == last || value == kRest) continue;
            last = value;
            cells_->reply.store(value, std::memory_order_release);
        }
    }

    Cells* cells_;
    uint32_t next_ = 0;
    Peer peer_;
};

class UnixSocket final {
  public:
    UnixSocket() : sockets_(MakePair()), peer_(Fork([this] { Serve(); })) { close(sockets_.peer); }
    ~UnixSocket() { close(sockets_.own); }
    UnixSocket(const UnixSocket&) = delete;
    UnixSocket& operator=(const UnixSocket&) = delete;

    void Begin() {}
    void End() {}
    // As many bytes as the request and the reply of GetFaxRedials have.
    bool Exchange() {
        char reply[40];
        return write(sockets_.own, "DeviceSettings.Fax.Redials?", 27) == 27 &&
               read(sockets_.own, reply, sizeof(reply)) == 34;
    }

  private:
    struct Sockets {
        int own;
        int peer;
    };

    static Sockets MakePair() {
        int files[2];
        if (socketpair(AF_UNIX, SOCK_STREAM, 0, files) != 0) throw std::runtime_error("no socket");
        return {files[0], files[1]};
    }

    void Serve() {
        close(sockets_.own);
        char request[64];
        while (read(sockets_.peer, request, sizeof(request)) > 0)
            if (write(sockets_.peer, "0000,DeviceSettings.Fax.Redials=3;", 34) != 34) return;
    }

    Sockets sockets_;
    Peer peer_;
};

pid_t Start(std::vector<std::string> words, int output = -1) {
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (output >= 0) posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    if (output < 0)
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", 1 /* O_WRONLY */, 0);
    pid_t id = 0;
    if (posix_spawn(&id, arguments[0], &actions, nullptr, arguments.data(), environ) != 0)
        throw std::runtime_error("cannot start " + words[0]);
    posix_spawn_file_actions_destroy(&actions);
    return id;
}

void Run(std::vector<std::string> words) {
    int status = 0;
    const std::string what = words[0] + ' ' + words[1];
    waitpid(Start(std::move(words)), &status, 0);
    if (status != 0) throw std::runtime_error(what + " failed");
}

// The virtual printer on a pipe, from which its ready line is read.
pid_t StartPrinter() {
    int files[2];
    if (pipe(files) != 0) throw std::runtime_error("no pipe");
    const pid_t id = Start({KESTREL_VPRINTER, "--port", "USB001", "--trace", "none"}, files[1]);
    close(files[1]);
    char line[256];
    if (read(files[0], line, sizeof(line)) <= 0)
        throw std::runtime_error("the virtual printer did not start");
    close(files[0]);
    return id;
}

class Library final {
  public:
    Library() : printer_(StartPrinter()) {
        Run({KESTREL_CLIENT, "setup"});
        Run({KESTREL_CLIENT, "printers", "add", "Bench", "--port", "USB001"});
        static constexpr char16_t kName[] = u"Bench";
        if (!SelectPrinter(kName) || !SetFaxRedials(3, 5000)) throw std::runtime_error("no printer");
    }

    void Begin() {}
    void End() {}
    bool Exchange() {
        uint8_t redials = 0;
        return GetFaxRedials(&redials, 5000) && redials == 3;
    }

  private:
    Peer printer_;
};

template <typename Contender>
void Round(Contender& contender, int exchanges, std::vector<double>& times) {
    contender.Begin();
    for (int i = 0; i < exchanges; ++i) {
        const auto start = Clock::now();
        if (!contender.Exchange()) throw std::runtime_error("a wrong answer");
        times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    }
    contender.End();
}

double Quantile(std::vector<double>& times, double part) {
    const auto at = times.begin() + static_cast<ptrdiff_t>(part * static_cast<double>(times.size() - 1));
    std::nth_element(times.begin(), at, times.end());
    return *at;
}

void PrintLoad() {
    double load[3] = {};
    if (getloadavg(load, 3) == 3)
        std::printf("load of the machine: %.2f %.2f %.2f\n", load[0], load[1], load[2]);
}

void Compare(int rounds, int exchanges) {
    PollingLimit limit;
    UnixSocket socket;
    Library library;
    std::vector<double> limitTimes;
    std::vector<double> socketTimes;
    std::vector<double> libraryTimes;
    PrintLoad();
    for (int round = 0; round < rounds; ++round) {
        Round(limit, exchanges, limitTimes);
        Round(library, exchanges, libraryTimes);
        Round(socket, exchanges / 20 + 1, socketTimes);
    }
    const double polled = Quantile(limitTimes, 0.5);
    const double own = Quantile(libraryTimes, 0.5);
    const double streamed = Quantile(socketTimes, 0.5);
    std::printf("%-32s %10s %10s\n", "round trip, us", "median", "p99");
    std::printf("%-32s %10.3f %10.3f\n", "two processes polling memory", polled, Quantile(limitTimes, 0.99));
    std::printf("%-32s %10.3f %10.3f\n", "GetFaxRedials", own, Quantile(libraryTimes, 0.99));
    std::printf("%-32s %10.3f %10.3f\n", "Unix stream socket", streamed, Quantile(socketTimes, 0.99));
    std::printf("GetFaxRedials takes %.2f x the polling limit; the socket takes %.1f x GetFaxRedials\n",
                own / polled, streamed / own);
}

}  // namespace

int main(int argc, char** argv) {
    char pattern[] = "/dev/shm/kestrel-bench-XXXXXX";
    const std::string home = mkdtemp(pattern) != nullptr ? pattern : "";
    setenv("WINPORT_HOME", home.c_str(), 1);
    int code = 0;
    try {
        Compare(argc > 1 ? std::atoi(argv[1]) : 5, argc > 2 ? std::atoi(argv[2]) : 20'000);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "round_trip: %s\n", failure.what());
        code = 1;
    }
    std::filesystem::remove_all(home);
    return code;
}
