// One printer as its metrics tell it, asked by a thread of its own.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <tuple>

#include "kestrel/installation/spooler.h"
#include "kestrel/printer/device_facts.h"
#include "kestrel/printer/device_status.h"

namespace cli::metrics {

using Clock = std::chrono::steady_clock;

/// What is asked for, in this order.
enum class Question { Status, Firmware };
inline constexpr std::array<std::string_view, 2> kQuestions = {"status", "firmware"};

/// Upper bounds in seconds; one more bucket takes the rest.
inline constexpr std::array<double, 10> kResponseBounds = {0.0001, 0.0005, 0.001, 0.005, 0.01,
                                                           0.05,   0.1,    0.5,   1,     5};

struct Responses final {
    std::array<uint64_t, kResponseBounds.size() + 1> counts{};
    double sum = 0;

    void Add(double seconds);
};

/// What one round of questions brought. Without a status there is none: then the rest is not asked for.
struct Reading final {
    DeviceStatus status;
    std::optional<FirmwareVersions>
        firmware;  // nothing while a printer is busy with an upgrade, for instance
    std::array<double, kQuestions.size()> seconds{};
    Clock::time_point at;
};

/// Why a printer did not answer, in the words of the labels.
struct Reason final {
    std::string code;  // of the library or the system; "none" for a failure without one
    std::string_view word;

    bool operator==(const Reason&) const = default;
    bool operator<(const Reason& other) const {
        return std::tie(code, word) < std::tie(other.code, other.word);
    }
};
[[nodiscard]] Reason ReasonOf(const Failure& failure);

struct Snapshot final {
    InstalledPrinter printer;
    std::optional<Reading> reading;  // nothing while the printer does not answer
    std::optional<Reason> reason;    // of the last round, when anything of it failed
    Responses responses;
    std::map<Reason, uint64_t> errors;
};

class PrinterWatch final {
  public:
    /// `library` outlives the process's other threads.
    PrinterWatch(const Library& library, std::string product, InstalledPrinter printer, uint32_t timeoutMs);
    PrinterWatch(const PrinterWatch&) = delete;
    PrinterWatch& operator=(const PrinterWatch&) = delete;
    /// Leaves the thread where it is: one that ends closes the printer's channel, which withdraws whatever
    /// request lies there, also another program's. The process is to end without unloading.
    ~PrinterWatch();

    /// Has the printer asked, unless that is under way.
    void Ask();
    /// Until the printer has answered or failed, and its thread lies still or has ended; or, of the second,
    /// until the time is over.
    void Wait();
    void WaitUntil(Clock::time_point end);
    [[nodiscard]] Snapshot Look() const;
    /// The printer is there no longer: its thread ends when it has done with its round.
    void Dismiss();

  private:
    struct Shared;

    void JoinEnded();

    std::shared_ptr<Shared> shared_;
    std::mutex mutex_;  // of the thread's owner, which several scrapes share
    std::thread thread_;
};

}  // namespace cli::metrics
