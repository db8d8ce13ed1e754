// The list is read anew each time: printers come and go while somebody watches.
#include "kestrel/metrics/watched_printers.h"

#include <algorithm>
#include <utility>

namespace cli::metrics {
namespace {

// A printer that has come back answers at once; one that is gone does not hold up the others.
constexpr std::chrono::milliseconds kPatienceAfterFailure{100};

}  // namespace

WatchedPrinters::WatchedPrinters(const Library& library, std::string product, uint32_t timeoutMs,
                                 ListPrinters list)
    : library_(library), product_(std::move(product)), timeoutMs_(timeoutMs), list_(std::move(list)) {}

std::vector<WatchedPrinters::Watch> WatchedPrinters::Current() {
    const std::vector<InstalledPrinter> printers = list_();
    const std::lock_guard lock(mutex_);
    decltype(watches_) kept;
    for (const InstalledPrinter& printer : printers) {
        const auto key = std::pair(printer.name, printer.port);
        const auto old = watches_.extract(key);
        kept.emplace(key, old ? old.mapped()
                              : std::make_shared<PrinterWatch>(library_, product_, printer, timeoutMs_));
    }
    for (const auto& [key, gone] : watches_)
        gone->Dismiss();
    watches_ = std::move(kept);
    std::vector<Watch> current;
    for (const auto& [key, watch] : watches_)
        current.push_back(watch);
    return current;
}

std::vector<WatchedPrinters::Watch> WatchedPrinters::AskAll() {
    std::vector<Watch> watches = Current();
    for (const Watch& watch : watches)
        watch->Ask();
    return watches;
}

std::vector<Snapshot> WatchedPrinters::Ask() {
    std::vector<Snapshot> snapshots;
    for (const Watch& watch : AskAll()) {
        watch->Wait();
        snapshots.push_back(watch->Look());
    }
    return snapshots;
}

std::vector<Snapshot> WatchedPrinters::AskWithin(std::chrono::milliseconds patience) {
    const Clock::time_point start = Clock::now();
    std::vector<Snapshot> snapshots;
    for (const Watch& watch : AskAll()) {
        const Snapshot last = watch->Look();
        const bool failed = last.reason && !last.reading;
        watch->WaitUntil(start + (failed ? std::min(patience, kPatienceAfterFailure) : patience));
        snapshots.push_back(watch->Look());
    }
    return snapshots;
}

}  // namespace cli::metrics
