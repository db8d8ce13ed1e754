// kestrel top: all printers on one screen.
#include <memory>

#include "kestrel/commands/commands.h"
#include "kestrel/commands/top.h"
#include "kestrel/installation/module.h"
#include "kestrel/installation/product_configuration.h"
#include "kestrel/metrics/watched_printers.h"
#include "kestrel/top/view.h"
#include "shared/process.h"
#include "shared/time_text.h"

namespace cli {
namespace {

using metrics::Clock;
using std::chrono::milliseconds;

// Of an answer: the screen is drawn without one that takes longer. Keys wait as long.
constexpr milliseconds kPatience(150);

std::unique_ptr<top::Screen> OpenScreen(bool inColour) {
    if (!tools::IsTerminal(stdout))
        throw UsageFailure("standard output is no terminal",
                           "use `kestrel watch` or `kestrel metrics` there");
    auto* const open = reinterpret_cast<top::OpenFunction*>(
        FindInModule("kestrel-top.so", top::kOpenName, "libncurses-dev"));
    std::unique_ptr<top::Screen> screen(open(inColour));
    if (!screen)
        throw UsageFailure("this terminal is not known to the system",
                           "set TERM to a terminal that is, such as xterm");
    return screen;
}

// From snapshots to what the view shows: rates and errors need the round before.
class Rounds final {
  public:
    [[nodiscard]] std::vector<TopPrinter> Next(std::vector<metrics::Snapshot> snapshots) {
        const Clock::time_point now = Clock::now();
        const double passed = std::chrono::duration<double>(now - last_).count();
        std::vector<TopPrinter> printers;
        for (metrics::Snapshot& snapshot : snapshots) {
            Before& before = before_[snapshot.printer.name];
            uint64_t answers = 0;
            for (const uint64_t count : snapshot.responses.counts)
                answers += count;
            if (snapshot.reason)
                before.error = std::string(snapshot.reason->word) + " " + snapshot.reason->code;
            const double rate = static_cast<double>(answers - before.answers) / passed;
            before.answers = answers;
            printers.push_back({std::move(snapshot), rate, before.error});
        }
        last_ = now;
        return printers;
    }

  private:
    struct Before {
        uint64_t answers = 0;
        std::string error;
    };
    std::map<std::string, Before> before_;
    Clock::time_point last_ = Clock::now();
};

}  // namespace

Report ShowTop(Context& context, milliseconds interval) {
    const GlobalOptions& global = context.Options();
    metrics::WatchedPrinters watched(context.GetLibrary(), global.product, global.timeoutMs, [&global] {
        return PrintersToWatch(global.printers, {InstalledPrinters(), ConfiguredDrivers(global.product)});
    });
    const std::unique_ptr<top::Screen> screen = OpenScreen(AreColoursWanted(global.noColour));
    TopView view;
    Rounds rounds;
    Report report;
    report.isTold = true;
    for (top::Key key = top::Key::None; key != top::Key::Quit && key != top::Key::Interrupt;) {
        view.Take(rounds.Next(watched.AskWithin(kPatience)));
        const Clock::time_point next = Clock::now() + interval;
        do {
            screen->Draw(view.Draw(screen->GetSize(),
                                   tools::LocalTimeOfDay(std::chrono::system_clock::now()).substr(0, 8)));
            const auto left = std::chrono::duration_cast<milliseconds>(next - Clock::now());
            key = screen->WaitForKey(std::max(left, milliseconds(1)));
            view.Press(key);
        } while (key != top::Key::Quit && key != top::Key::Interrupt && Clock::now() < next);
        if (key == top::Key::Interrupt)
            report.failure = Failure{ExitCode::Interrupted, "interrupted", {}, {}, {}, {}};
    }
    return report;
}

}  // namespace cli
