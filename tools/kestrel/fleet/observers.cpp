// A printer that leaves a request unanswered has its thread end, which takes the request back, and gets a new
// one.
#include "kestrel/fleet/observers.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace cli {

struct Observers::Shared final {
    Shared(const Library& itsLibrary, Task itsTask) : library(itsLibrary), task(std::move(itsTask)) {}

    const Library& library;
    const Task task;
    std::mutex mutex;
    std::condition_variable changed;
    bool ends = false;

    static void Observe(const std::shared_ptr<Shared>& shared, const std::string& name);
    // Until the end, or until the printer leaves a request unanswered.
    void LookAt(const std::string& name, KnownPrinter& known);
    [[nodiscard]] std::optional<Failure> LookOnce(const std::string& name, std::optional<Printer>& printer,
                                                  Sight& sight) const;
    // False when it is time to end.
    [[nodiscard]] bool TellAndWait(const std::string& name, KnownPrinter& known, const Sight& sight);
};

std::optional<Failure> Observers::Shared::LookOnce(const std::string& name, std::optional<Printer>& printer,
                                                   Sight& sight) const {
    try {
        if (!printer) printer.emplace(library, task.product, name, task.timeoutMs);
        sight.facts = task.look(*printer);
        sight.answers = true;
        return std::nullopt;
    } catch (const Failure& failure) {
        sight.reason = failure.text;
        return failure;
    } catch (const std::exception& fault) {
        sight.reason = fault.what();
        return Failure{ExitCode::OwnFault, fault.what(), {}, {}, {}, {}};
    }
}

bool Observers::Shared::TellAndWait(const std::string& name, KnownPrinter& known, const Sight& sight) {
    std::unique_lock lock(mutex);
    if (ends) return false;
    for (const SightEvent& event : known.Learn(sight))
        task.tell(name, event);
    return !changed.wait_for(lock, task.interval, [this] { return ends; });
}

void Observers::Shared::LookAt(const std::string& name, KnownPrinter& known) {
    std::optional<Printer> printer;
    bool goesOn = true;
    while (goesOn) {
        Sight sight;
        const std::optional<Failure> failure = LookOnce(name, printer, sight);
        if (failure) printer.reset();
        goesOn = TellAndWait(name, known, sight) && !(failure && failure->exit == ExitCode::NoAnswer);
    }
}

void Observers::Shared::Observe(const std::shared_ptr<Shared>& shared, const std::string& name) {
    KnownPrinter known;
    const auto isOver = [&shared] {
        const std::lock_guard lock(shared->mutex);
        return shared->ends;
    };
    while (!isOver())
        std::thread([&] { shared->LookAt(name, known); }).join();
}

Observers::Observers(const Library& library, Task task, const std::vector<std::string>& printers)
    : shared_(std::make_shared<Shared>(library, std::move(task))) {
    for (const std::string& name : printers)
        std::thread([shared = shared_, name] { Shared::Observe(shared, name); }).detach();
}

Observers::~Observers() {
    const std::lock_guard lock(shared_->mutex);
    shared_->ends = true;
    shared_->changed.notify_all();
}

}  // namespace cli
