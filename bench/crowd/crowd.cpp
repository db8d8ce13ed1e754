// crowd    what an exchange costs where many threads have a printer each, beside what it costs where one
// thread has
//          one; lines of JSON
//
// Two processes of the library, each with its virtual printer: one has one thread and one printer, the other
// a thousand threads and two hundred printers. A thread sleeps until it is its turn, and one turn is under
// way at a time, of either process alternately: nobody ever waits for another thread's exchange.
#include <kestrel/sdk.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "engine/server.h"
#include "library/library.h"
#include "library/printer.h"

namespace {

constexpr unsigned kThreads = 1000;
constexpr unsigned kTurns = 3 * kThreads;
constexpr unsigned kFewestTurns = kTurns / 50;  // of which a median is made
constexpr unsigned kWarming = 5;                // exchanges at the beginning of a turn
constexpr unsigned kExchangesOfTurn = 20;       // those after them
constexpr uint8_t kRedials = 3;
constexpr time_t kPatience = 20;       // seconds until a turn is given up
constexpr useconds_t kAsleepUs = 200;  // after this, whoever was busy in a turn no longer polls

double NowUs() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

struct Turn {
    double firstUs = 0;     // it wakes the printer, and what both sides touch has left the caches
    double exchangeUs = 0;  // the mean of those after the warming ones
    bool slept = false;     // the thread did, during these
};

// Lies in memory that the measuring process shares with the threads that take turns.
class Table final {
  public:
    Table() {
        sem_init(&over_, 1, 0);
        for (sem_t& seat : seats_)
            sem_init(&seat, 1, 0);
    }

    Turn GiveTurn(unsigned seat) {
        timespec end;
        clock_gettime(CLOCK_REALTIME, &end);
        end.tv_sec += kPatience;
        sem_post(&seats_[seat]);
        if (sem_timedwait(&over_, &end) != 0) throw std::runtime_error("a thread does not end its turn");
        return turn_;
    }

    void AwaitTurn(unsigned seat) { sem_wait(&seats_[seat]); }

    void EndTurn(const Turn& turn) {
        turn_ = turn;
        sem_post(&over_);
    }

  private:
    sem_t over_;
    Turn turn_;
    sem_t seats_[kThreads];
};

void Exchange() {
    uint8_t redials = 0;
    if (!GetFaxRedials(&redials, kTimeoutMs) || redials != kRedials)
        throw std::runtime_error("a wrong answer");
}

// How often this thread has slept so far.
long Sleeps() {
    rusage usage;
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw;
}

Turn TakeTurn() {
    const double begin = NowUs();
    Exchange();
    const double firstUs = NowUs() - begin;
    for (unsigned i = 1; i < kWarming; ++i)
        Exchange();
    const long sleeps = Sleeps();
    const double start = NowUs();
    for (unsigned i = 0; i < kExchangesOfTurn; ++i)
        Exchange();
    return {firstUs, (NowUs() - start) / kExchangesOfTurn, Sleeps() != sleeps};
}

// A thread of a crowd; its first turn is for the selection. It is killed with its process.
void Sit(Table& table, unsigned seat, const std::string& printer) {
    table.AwaitTurn(seat);
    if (!SelectPrinter(std::u16string(printer.begin(), printer.end()).c_str()) ||
        !SetFaxRedials(kRedials, kTimeoutMs))
        throw std::runtime_error(printer + " cannot be used");
    for (Turn turn;; turn = TakeTurn()) {
        table.EndTurn(turn);
        table.AwaitTurn(seat);
    }
}

double Median(std::vector<double> values) {
    if (values.size() < kFewestTurns)
        throw std::runtime_error("too busy a machine: nearly all turns were disturbed");
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

// A process of so many threads, among which the printers are dealt out.
class Crowd final {
  public:
    Crowd(const Contender& printer, std::vector<std::string> printers, unsigned threads, bool oneProcessor)
        : threads_(threads),
          oneProcessor_(oneProcessor),
          printers_(std::move(printers)),
          table_(new (mmap(nullptr, sizeof(Table), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
                     Table),
          server_(printer, place_, oneProcessor),
          process_([this] { SeatThreads(); }) {
        for (unsigned i = 0; i < threads; ++i)
            table_->GiveTurn(i);
    }
    Crowd(const Crowd&) = delete;
    Crowd& operator=(const Crowd&) = delete;
    ~Crowd() { munmap(table_, sizeof(Table)); }

    void GiveTurn(unsigned number) {
        usleep(kAsleepUs);
        const Turn turn = table_->GiveTurn(number % threads_);
        first_.push_back(turn.firstUs);
        // On one processor both sides sleep each time; otherwise a turn with a sleep in it is that of a
        // printer that shares the thread's processor, as the system places them.
        if (oneProcessor_ || !turn.slept) exchange_.push_back(turn.exchangeUs);
    }

    [[nodiscard]] double FirstUs() const { return Median(first_); }
    [[nodiscard]] double ExchangeUs() const { return Median(exchange_); }
    [[nodiscard]] double CountedPercent() const {
        return 100 * static_cast<double>(exchange_.size()) / static_cast<double>(first_.size());
    }

  private:
    void SeatThreads() {
        if (oneProcessor_) KeepOnProcessor(0);
        UseHome(place_);
        std::vector<std::jthread> all;
        for (unsigned i = 0; i < threads_; ++i)
            all.emplace_back([this, i] { Sit(*table_, i, printers_[i % printers_.size()]); });
    }

    unsigned threads_;
    bool oneProcessor_;
    std::vector<std::string> printers_;
    TemporaryFolder folder_;
    Place place_{folder_.Path()};
    Table* table_;
    Server server_;
    ChildProcess process_;
    std::vector<double> first_;
    std::vector<double> exchange_;
};

void Tell(const std::string& what, const char* unit, double one, double many) {
    const auto tell = [&](const char* whose, double value) {
        std::printf("{\"check\": \"%s, %s, %s\", \"value\": %.3f}\n", what.c_str(), whose, unit, value);
    };
    tell("one thread", one);
    tell("1,000 threads", many);
}

void Compare(const std::string& what, bool oneProcessor) {
    Contender fleet = kGetFaxRedials;
    fleet.serve = ServeFleet;
    Crowd one(kGetFaxRedials, {"Bench"}, 1, oneProcessor);
    Crowd many(fleet, FleetPrinters(), kThreads, oneProcessor);
    for (unsigned i = 0; i < kTurns; ++i) {
        one.GiveTurn(i);
        many.GiveTurn(i);
    }
    Tell("exchange" + what, "us", one.ExchangeUs(), many.ExchangeUs());
    Tell("first of a turn" + what, "us", one.FirstUs(), many.FirstUs());
    if (!oneProcessor) Tell("turns without a sleep", "per cent", one.CountedPercent(), many.CountedPercent());
}

}  // namespace

int main() {
    try {
        Compare("", false);
        Compare(" on one processor", true);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "crowd: %s\n", failure.what());
        return 1;
    }
}
