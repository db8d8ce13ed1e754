// The thread selects its printer once, and again after a failure.
#include "kestrel/metrics/printer_watch.h"

#include <algorithm>
#include <exception>
#include <system_error>
#include <utility>

namespace cli::metrics {
namespace {

struct ReasonWord {
    ExitCode exit;
    std::string_view word;
};
constexpr std::array kReasonWords = {
    ReasonWord{ExitCode::DeviceRefused, "refused"},   ReasonWord{ExitCode::NoPrinter, "no-printer"},
    ReasonWord{ExitCode::NoAnswer, "no-answer"},      ReasonWord{ExitCode::Locked, "locked"},
    ReasonWord{ExitCode::ValueRefused, "bad-reply"},  ReasonWord{ExitCode::BadReply, "bad-reply"},
    ReasonWord{ExitCode::OwnFault, "not-installed"},
};

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

}  // namespace

void Responses::Add(double seconds) {
    const auto bucket = std::ranges::lower_bound(kResponseBounds, seconds);
    ++counts[static_cast<size_t>(bucket - kResponseBounds.begin())];
    sum += seconds;
}

Reason ReasonOf(const Failure& failure) {
    const auto* const row = std::ranges::find(kReasonWords, failure.exit, &ReasonWord::exit);
    return {failure.code ? CodeText(*failure.code) : "none",
            row == kReasonWords.end() ? "other" : row->word};
}

struct PrinterWatch::Shared final {
    Shared(const Library& itsLibrary, std::string itsProduct, InstalledPrinter itsPrinter, uint32_t timeout)
        : library(itsLibrary), product(std::move(itsProduct)), timeoutMs(timeout) {
        now.printer = std::move(itsPrinter);
    }

    const Library& library;
    const std::string product;
    const uint32_t timeoutMs;

    std::mutex mutex;
    std::condition_variable changed;
    bool wanted = false;     // a round is to be made, or is under way
    bool running = false;    // the thread takes rounds
    bool dismissed = false;  // and is to take no more
    Snapshot now;

    static void Run(const std::shared_ptr<Shared>& shared);
    [[nodiscard]] bool WaitForRound();
    [[nodiscard]] Reading ReadAll(std::optional<Printer>& printer);
    template <typename Action>
    auto Timed(Question question, Reading& reading, const Action& act);
    void Fail(const Failure& failure, bool ends);
};

bool PrinterWatch::Shared::WaitForRound() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return wanted || dismissed; });
    if (!dismissed) return true;
    running = wanted = false;
    return false;
}

template <typename Action>
auto PrinterWatch::Shared::Timed(Question question, Reading& reading, const Action& act) {
    const Clock::time_point start = Clock::now();
    auto answer = act();
    const double seconds = SecondsSince(start);
    reading.seconds[static_cast<size_t>(question)] = seconds;
    const std::lock_guard lock(mutex);
    now.responses.Add(seconds);
    return answer;
}

Reading PrinterWatch::Shared::ReadAll(std::optional<Printer>& printer) {
    if (!printer) printer.emplace(library, product, now.printer.name, timeoutMs);
    Reading reading;
    reading.status = Timed(Question::Status, reading, [&] { return AskDeviceStatus(*printer); });
    reading.firmware =
        Timed(Question::Firmware, reading, [&] { return ReadFirmwareVersions(library, timeoutMs); });
    reading.at = Clock::now();
    return reading;
}

void PrinterWatch::Shared::Fail(const Failure& failure, bool ends) {
    const std::lock_guard lock(mutex);
    now.reading.reset();
    now.reason = ReasonOf(failure);
    ++now.errors[*now.reason];
    wanted = false;
    running = !ends;
    changed.notify_all();
}

void PrinterWatch::Shared::Run(const std::shared_ptr<Shared>& shared) {
    std::optional<Printer> printer;
    while (shared->WaitForRound()) {
        try {
            Reading reading = shared->ReadAll(printer);
            const std::lock_guard lock(shared->mutex);
            shared->now.reading = std::move(reading);
            shared->now.reason.reset();
            shared->wanted = false;
            shared->changed.notify_all();
        } catch (const Failure& failure) {
            printer.reset();
            // A request that was given up may lie in the channel; the end of the thread takes it back.
            const bool ends = failure.exit == ExitCode::NoAnswer;
            shared->Fail(failure, ends);
            if (ends) return;
        } catch (const std::exception& fault) {
            printer.reset();
            shared->Fail({ExitCode::OwnFault, fault.what(), {}, {}, {}, {}}, false);
        }
    }
}

PrinterWatch::PrinterWatch(const Library& library, std::string product, InstalledPrinter printer,
                           uint32_t timeoutMs)
    : shared_(std::make_shared<Shared>(library, std::move(product), std::move(printer), timeoutMs)) {}

PrinterWatch::~PrinterWatch() {
    if (thread_.joinable()) thread_.detach();
}

void PrinterWatch::JoinEnded() {
    const std::lock_guard lock(mutex_);
    {
        const std::lock_guard itsLock(shared_->mutex);
        if (shared_->running) return;
    }
    if (thread_.joinable()) thread_.join();
}

void PrinterWatch::Ask() {
    const std::lock_guard lock(mutex_);
    {
        const std::lock_guard itsLock(shared_->mutex);
        if (shared_->wanted || shared_->dismissed) return;
        shared_->wanted = true;
        shared_->changed.notify_all();
        if (std::exchange(shared_->running, true)) return;
    }
    if (thread_.joinable()) thread_.join();
    try {
        thread_ = std::thread([shared = shared_] { Shared::Run(shared); });
    } catch (const std::system_error& error) {
        shared_->Fail({ExitCode::OwnFault, error.what(), {}, {}, {}, {}}, true);
    }
}

void PrinterWatch::Wait() {
    {
        std::unique_lock lock(shared_->mutex);
        shared_->changed.wait(lock, [this] { return !shared_->wanted; });
    }
    JoinEnded();
}

void PrinterWatch::WaitUntil(Clock::time_point end) {
    {
        std::unique_lock lock(shared_->mutex);
        if (!shared_->changed.wait_until(lock, end, [this] { return !shared_->wanted; })) return;
    }
    JoinEnded();
}

Snapshot PrinterWatch::Look() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->now;
}

void PrinterWatch::Dismiss() {
    const std::lock_guard lock(shared_->mutex);
    shared_->dismissed = true;
    shared_->changed.notify_all();
}

}  // namespace cli::metrics
