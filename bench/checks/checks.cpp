// checks                what is counted rather than compared, as lines of JSON: allocations, processor time
//                       while idle, the time to open a printer and to start the client; and what sdk.hpp adds
//                       to a call
// checks exchanges N    N hot exchanges and no more, for a tracer of system calls
#include <time.h>
#include <unistd.h>
#include <kestrel/sdk.hpp>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "engine/server.h"
#include "library/library.h"
#include "library/printer.h"

namespace {

std::atomic<uint64_t> allocations{0};

}  // namespace

// In the place of the C library's, for all libraries of this program.

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);

void* malloc(size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(block, size);
}
}

namespace {

constexpr int kCountedExchanges = 1000;
constexpr int kOpenings = 50;
constexpr int kTurns = 2000;
constexpr int kStarts = 60;
constexpr int kExchangesOfTurn = 20;
constexpr unsigned kIdleSeconds = 10;

double NowUs() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

void Tell(const char* name, double value) {
    std::printf("{\"check\": \"%s\", \"value\": %.3f}\n", name, value);
    std::fflush(stdout);
}

void Require(bool condition, const char* what) {
    if (!condition) throw std::runtime_error(what);
}

void ExchangeTimes(int times) {
    for (int i = 0; i < times; ++i) {
        uint8_t redials = 0;
        Require(GetFaxRedials(&redials, kTimeoutMs) && redials == 3, "a wrong answer");
    }
}

void TypedExchangeTimes(const kestrel::Printer& printer, int times) {
    for (int i = 0; i < times; ++i) {
        const auto redials = printer.get<kestrel::setting::fax_redials>();
        Require(redials && *redials == 3, "a wrong answer");
    }
}

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

template <typename Action>
double MedianUs(Action action) {
    std::vector<double> times;
    for (int i = 0; i < kOpenings; ++i)
        times.push_back(action());
    return Median(std::move(times));
}

template <typename Action>
double Timed(Action action) {
    const double start = NowUs();
    action();
    return NowUs() - start;
}

// The time is taken inside the thread: starting it is not the library's.
template <typename Action>
double TimedOnNewThread(Action action) {
    double time = 0;
    std::thread([&] { time = Timed(action); }).join();
    return time;
}

// By turns in one process: what disturbs the one disturbs the other as well.
double TypedOfC() {
    const auto printer = kestrel::Printer::select().value();
    std::vector<double> plain;
    std::vector<double> typed;
    for (int i = 0; i < kTurns; ++i) {
        plain.push_back(Timed([] { ExchangeTimes(kExchangesOfTurn); }));
        typed.push_back(Timed([&] { TypedExchangeTimes(printer, kExchangesOfTurn); }));
    }
    return Median(std::move(typed)) / Median(std::move(plain));
}

// Two printers in processes of their own, asked by turns.
double WithPanelOfWithout(const Place& place) {
    Contender contender = kGetFaxRedials;
    contender.serve = ServeVirtualPrinterWithPanel;
    const Server withPanel(contender, place, false);
    SelectPrinterWithPanel(place);
    Require(SetFaxRedials(3, kTimeoutMs), "the setting is refused");
    std::vector<double> with;
    std::vector<double> without;
    for (int i = 0; i < kTurns; ++i) {
        SelectInstalledPrinter(place);
        ExchangeTimes(kExchangesOfTurn);
        without.push_back(Timed([] { ExchangeTimes(kExchangesOfTurn); }));
        SelectPrinterWithPanel(place);
        ExchangeTimes(kExchangesOfTurn);
        with.push_back(Timed([] { ExchangeTimes(kExchangesOfTurn); }));
    }
    SelectInstalledPrinter(place);
    return Median(std::move(with)) / Median(std::move(without));
}

// The client asks for a value in a process of its own, by turns with a program that does nothing.
void TellColdClient() {
    std::vector<double> client;
    std::vector<double> nothing;
    for (int i = 0; i < kStarts; ++i) {
        client.push_back(Timed([] { Run({KESTREL_CLIENT, "--printer", "Bench", "get", "fax.redials"}); }));
        nothing.push_back(Timed([] { Run({"/bin/true"}); }));
    }
    const double medianUs = Median(std::move(client));
    Tell("cold kestrel get, ms", medianUs / 1000);
    Tell("cold kestrel get, x of /bin/true", medianUs / Median(std::move(nothing)));
}

void CheckAll(const Server& printer, const Place& place) {
    ExchangeTimes(1);
    const uint64_t before = allocations.load();
    ExchangeTimes(kCountedExchanges);
    Tell("allocations an exchange", static_cast<double>(allocations.load() - before) / kCountedExchanges);

    Tell("GetFaxRedials through sdk.hpp, x of C", TypedOfC());
    Tell("exchange with --web and nobody looking, x of without", WithPanelOfWithout(place));
    Tell("select a printer, us", MedianUs([&] { return Timed([&] { SelectInstalledPrinter(place); }); }));
    Tell("object of a new thread, us", MedianUs([] { return TimedOnNewThread(GetLastResponseNum); }));
    Tell("first selection on a new thread, us",
         MedianUs([&] { return TimedOnNewThread([&] { SelectInstalledPrinter(place); }); }));

    TellColdClient();
    ExchangeTimes(kCountedExchanges);
    usleep(200'000);
    const uint64_t ownBefore = ProcessorTime(getpid());
    const uint64_t printerBefore = printer.Time();
    sleep(kIdleSeconds);
    Tell("idle library, ms", static_cast<double>(ProcessorTime(getpid()) - ownBefore) / 1e6);
    Tell("idle counterpart, ms", static_cast<double>(printer.Time() - printerBefore) / 1e6);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const TemporaryFolder folder;
        const Place place{folder.Path()};
        const Server printer(kGetFaxRedials, place, false);
        SelectInstalledPrinter(place);
        Require(SetFaxRedials(3, kTimeoutMs), "the setting is refused");
        if (argc == 3 && std::strcmp(argv[1], "exchanges") == 0)
            ExchangeTimes(std::atoi(argv[2]));
        else
            CheckAll(printer, place);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "checks: %s\n", failure.what());
        return 1;
    }
}
