#include "engine/measurement.h"

#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <list>
#include <new>
#include <stdexcept>

#include "engine/histogram.h"
#include "engine/process.h"
#include "engine/server.h"

namespace {

constexpr Case kCases[] = {
    {'h', "hot", 1, 0, false, 0.4, 0.2},
    {'4', "four clients", 4, 0, false, 2.0, 0.6},
    {'m', "one a millisecond", 1, 1000, false, 0.6, 0.4},
    {'1', "one processor", 1, 0, true, 0.4, 0.2},
    {'f', "200 printers", 1, 0, false, 4.0, 0.2},
};

constexpr unsigned kMostClients = 4;
constexpr uint64_t kSecond = 1'000'000'000;
constexpr uint64_t kWarmUp = kSecond / 10;
constexpr int kWarmUpExchanges = 2000;

uint64_t Now() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_sec) * kSecond + static_cast<uint64_t>(now.tv_nsec);
}

// What reading the clock adds to a sample; it is taken off again.
uint64_t ClockCost() {
    uint64_t least = kSecond;
    for (int i = 0; i < 1000; ++i) {
        const uint64_t start = Now();
        least = std::min(least, Now() - start);
    }
    return least;
}

struct Outcome {
    Histogram durations;
    uint64_t elapsed = 0;
    uint64_t processorTime = 0;
};

// Lies in memory that the measuring process shares with its clients.
struct Board {
    std::atomic<unsigned> warm{0};
    std::atomic<bool> begun{false};
    Outcome outcomes[kMostClients];
};

class SharedBoard final {
  public:
    SharedBoard()
        : board_(new (mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE,
                           MAP_SHARED | MAP_ANONYMOUS | MAP_POPULATE, -1, 0)) Board) {}
    SharedBoard(const SharedBoard&) = delete;
    SharedBoard& operator=(const SharedBoard&) = delete;
    ~SharedBoard() { munmap(board_, sizeof(Board)); }
    Board* operator->() const { return board_; }

  private:
    Board* board_;
};

void ExchangeRightly(Client& client, const char* name) {
    client.Exchange();
    if (!client.IsRight()) throw std::runtime_error(std::string("a wrong answer: ") + name);
}

void WarmUp(Client& client, const char* name) {
    const uint64_t end = Now() + kWarmUp;
    for (int i = 0; i < kWarmUpExchanges && (i == 0 || Now() < end); ++i)
        ExchangeRightly(client, name);
}

void SleepUntil(uint64_t moment) {
    const timespec time = {static_cast<time_t>(moment / kSecond), static_cast<long>(moment % kSecond)};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &time, nullptr);
}

void TakeSamples(Client& client, const char* name, const Case& how, double seconds, Outcome& outcome) {
    const uint64_t clockCost = ClockCost();
    const uint64_t pause = uint64_t{how.pauseUs} * 1000;
    const uint64_t begin = Now();
    const uint64_t end = begin + static_cast<uint64_t>(seconds * static_cast<double>(kSecond));
    uint64_t next = begin;
    uint64_t now = begin;
    while (now < end) {
        if (pause != 0) SleepUntil(next += pause);
        const uint64_t start = Now();
        client.Exchange();
        now = Now();
        outcome.durations.Add(now - start > clockCost ? now - start - clockCost : 0);
        if (!client.IsRight()) throw std::runtime_error(std::string("a wrong answer: ") + name);
    }
    outcome.elapsed = Now() - begin;
}

void RunClient(const Contender& contender, const Place& place, const Case& how, double seconds,
               unsigned index, Board& board) {
    if (how.oneProcessor) KeepOnProcessor(0);
    const std::unique_ptr<Client> client = contender.connect(place, index);
    WarmUp(*client, contender.name);
    board.warm.fetch_add(1);
    while (!board.begun.load())
        usleep(200);
    const uint64_t before = ProcessorTime(getpid());
    TakeSamples(*client, contender.name, how, seconds, board.outcomes[index]);
    board.outcomes[index].processorTime = ProcessorTime(getpid()) - before;
}

Figures Summarize(const Board& board, unsigned clients, uint64_t serverTime) {
    Histogram all;
    Figures figures;
    uint64_t processorTime = serverTime;
    uint64_t least = std::numeric_limits<uint64_t>::max();
    uint64_t most = 0;
    for (unsigned i = 0; i < clients; ++i) {
        const Outcome& outcome = board.outcomes[i];
        const uint64_t count = outcome.durations.Total();
        all.Add(outcome.durations);
        processorTime += outcome.processorTime;
        least = std::min(least, count);
        most = std::max(most, count);
        figures.opsPerSecond +=
            static_cast<double>(count) * static_cast<double>(kSecond) / static_cast<double>(outcome.elapsed);
    }
    figures.medianUs = all.Quantile(0.5) / 1000;
    figures.p99Us = all.Quantile(0.99) / 1000;
    figures.cpuUs = static_cast<double>(processorTime) / 1000 / static_cast<double>(all.Total());
    figures.fairness = static_cast<double>(most) / static_cast<double>(std::max<uint64_t>(least, 1));
    return figures;
}

}  // namespace

std::span<const Case> Cases() {
    return kCases;
}

const Case& FindCase(const std::string& name) {
    for (const Case& row : kCases)
        if (row.name == name) return row;
    throw std::runtime_error("no case " + name);
}

Figures Measure(const Contender& contender, const Case& how, double seconds) {
    const TemporaryFolder folder;
    const Place place{folder.Path()};
    const SharedBoard board;
    const Server server(contender, place, how.oneProcessor);
    std::list<ChildProcess> clients;
    for (unsigned i = 0; i < how.clients; ++i)
        clients.emplace_back([&, i] { RunClient(contender, place, how, seconds, i, *board.operator->()); });
    while (board->warm.load() < how.clients) {
        if (std::ranges::any_of(clients, &ChildProcess::HasEnded))
            throw std::runtime_error(std::string("no client: ") + contender.name);
        usleep(1000);
    }
    const uint64_t before = server.Time();
    board->begun.store(true);
    bool done = true;
    for (ChildProcess& client : clients)
        done = client.Join() && done;
    const uint64_t serverTime = server.Time() - before;
    if (!done) throw std::runtime_error(std::string("a client failed: ") + contender.name);
    return Summarize(*board.operator->(), how.clients, serverTime);
}
