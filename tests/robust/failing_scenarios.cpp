// Runs the scenarios, each with its nth call failing, for every n: a crash, a hang, a leak, a failure without
// a reason or an aftermath is a fault.
//
//   failing_scenarios SEED SAMPLES [NAME]     SAMPLES: calls that fail of each scenario and kind; 0: all
#include <kestrel/sdk.h>
#include <unistd.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <new>
#include <random>
#include <string>

#include "failing.h"
#include "forked.h"

namespace {

using failing::Kind;

long OpenDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
}

enum Verdict { kNotReached = 0, kSurvived = 1, kNoReason = 2, kNoAftermath = 3, kLeak = 4 };

// The classes behind the exports report a lack of memory by an exception; so does what a scenario needs.
bool Run(const Scenario& scenario) {
    try {
        return scenario.run();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return false;
    }
}

// In a process of its own, which knows nothing yet.
int Try(const Scenario& scenario, Kind kind, long nth, bool forever, int error, long mostDescriptors) {
    alarm(30);
    // The first look at the product configuration decides for the whole process, a failure too.
    if (scenario.isExport) SelectPrinter(TEXT("none"));
    failing::Arm(kind, nth, forever, error);
    SetLastError(0);
    const bool done = Run(scenario);
    const DWORD reason = GetLastError();
    const bool reached = failing::Disarm() >= nth;
    if (!done && reason == 0 && !scenario.mayFailQuietly) return kNoReason;
    // What a failed exchange left in the channel may cost one more.
    if (!Run(scenario) && !Run(scenario)) return kNoAftermath;
    if (OpenDescriptors() > mostDescriptors) return kLeak;
    return reached ? kSurvived : kNotReached;
}

template <typename Body>
int InChild(Body body) {
    return Forked(body).Wait();
}

struct Totals {
    long tried = 0;
    long faults = 0;
};

constexpr int kErrors[] = {ENOSPC, EMFILE, ENOMEM, EACCES, EINTR, EAGAIN, failing::kShortRead};
constexpr size_t kLastingErrors = 4;  // the first ones; the others pass

void TryCalls(const Scenario& scenario, Kind kind, bool forever, long samples, std::mt19937& random,
              Totals& totals) {
    // How many calls there are, and descriptors afterwards.
    const int descriptors = InChild([&] {
        scenario.run();
        scenario.run();
        return static_cast<int>(OpenDescriptors());
    });
    const int counted = InChild([&] {
        failing::Arm(kind, 1'000'000, false, ENOMEM);
        Run(scenario);
        return static_cast<int>(std::min(failing::Disarm(), 255L));
    });
    for (long i = 0; i < (samples != 0 ? std::min<long>(samples, counted) : counted); ++i) {
        const long nth = samples != 0 && samples < counted ? 1 + random() % counted : i + 1;
        const size_t errors = forever ? kLastingErrors : std::size(kErrors);
        const int error = kind == Kind::Allocation ? ENOMEM : kErrors[random() % errors];
        const int verdict = InChild([&] { return Try(scenario, kind, nth, forever, error, descriptors); });
        ++totals.tried;
        if (verdict == kSurvived || verdict == kNotReached) continue;
        ++totals.faults;
        std::printf("%s, %s call %ld %s with %d: verdict %d\n", scenario.name.c_str(),
                    kind == Kind::Allocation ? "allocation" : "system", nth,
                    forever ? "and all behind it" : "once", error, verdict);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    std::mt19937 random(static_cast<uint32_t>(std::strtoul(argv[1], nullptr, 10)));
    const long samples = std::atol(argv[2]);
    setvbuf(stdout, nullptr, _IOLBF, 0);
    Totals totals;
    const std::vector<Scenario> scenarios = Scenarios();
    for (const Scenario& scenario : scenarios) {
        if (argc > 3 && scenario.name != argv[3]) continue;
        if (InChild([&] { return scenario.run() ? 1 : 0; }) != 1) {
            std::printf("%s does not even succeed by itself\n", scenario.name.c_str());
            ++totals.faults;
            continue;
        }
        for (const Kind kind : {Kind::SystemCall, Kind::Allocation})
            for (const bool forever : {false, true})
                TryCalls(scenario, kind, forever, samples, random, totals);
    }
    std::printf("%zu scenarios, %ld calls that failed, %ld faults\n", scenarios.size(), totals.tried,
                totals.faults);
    return totals.faults == 0 ? 0 : 1;
}
