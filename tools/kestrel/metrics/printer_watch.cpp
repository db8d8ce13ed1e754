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
    ReasonWord{ExitCode::DeviceRefused, "refused"},  ReasonWord{ExitCode::NoPrinter, "no-printer"},
    ReasonWord{ExitCode::NoAnswer, "no-answer"},     ReasonWord{ExitCode::Locked, "locked"},
    ReasonWord{ExitCode::ValueRefused, "bad-reply"}, ReasonWord{ExitCode::BadReply, "bad-reply"},
    ReasonWord{ExitCode::OwnFault, "not-installed"},
};

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Round final {
    std::optional<Reading> reading;
    std::optional<Failure> failure;
};

}  // namespace

void Responses::Add(double seconds) {
    const auto bucket = std::ranges::lower_bound(kResponseBounds, seconds);
    ++counts[static_cast<size_t>(bucket - kResponseBounds.begin())];
    sum += seconds;
}

Reason ReasonOf(const Failure& failure) {
    const auto* const row = std::ranges::find(kReasonWords, failure.exit, &ReasonWord::exit);
    return {failure.code ? CodeText(*failure.code) : "none", row == kReasonWords.end() ? "other" : row->word};
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
    [[nodiscard]] Round AskAll(std::optional<Printer>& printer);
    void AskInto(Round& round, std::optional<Printer>& printer);
    template <typename Action>
    auto Timed(Question question, Reading& reading, const Action& act);
    void Keep(const Round& round, bool ends);
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

void PrinterWatch::Shared::AskInto(Round& round, std::optional<Printer>& printer) {
    if (!printer) printer.emplace(library, product, now.printer.name, timeoutMs);
    Reading reading;
    reading.status = Timed(Question::Status, reading, [&] { return AskDeviceStatus(*printer); });
    reading.at = Clock::now();
    Reading& kept = round.reading.emplace(std::move(reading));
    kept.firmware = Timed(Question::Firmware, kept, [&] { return ReadFirmwareVersions(library, timeoutMs); });
}

Round PrinterWatch::Shared::AskAll(std::optional<Printer>& printer) {
    Round round;
    try {
        AskInto(round, printer);
    } catch (const Failure& failure) {
        round.failure = failure;
    } catch (const std::exception& fault) {
        round.failure = Failure{ExitCode::OwnFault, fault.what(), {}, {}, {}, {}};
    }
    return round;
}

void PrinterWatch::Shared::Keep(const Round& round, bool ends) {
    const std::lock_guard lock(mutex);
    now.reading = round.reading;
    now.reason.reset();
    if (round.failure) ++now.errors[now.reason.emplace(ReasonOf(*round.failure))];
    wanted = false;
    running = !ends;
    changed.notify_all();
}

void PrinterWatch::Shared::Run(const std::shared_ptr<Shared>& shared) {
    std::optional<Printer> printer;
    while (shared->WaitForRound()) {
        const Round round = shared->AskAll(printer);
        if (!round.reading) printer.reset();
        // A request that was given up may lie in the channel; the end of the thread takes it back.
        const bool ends = round.failure && round.failure->exit == ExitCode::NoAnswer;
        shared->Keep(round, ends);
        if (ends) return;
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
        shared_->Keep({{}, Failure{ExitCode::OwnFault, error.what(), {}, {}, {}, {}}}, true);
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
