// The same work for many printers, a thread for each: a selection holds for the thread that made it.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "kestrel/output/output.h"

namespace cli {

class EachPrinter final {
  public:
    // Everything that it throws belongs into its report.
    using Work = std::function<Report(const std::string& printer)>;
    // A printer is done, the `done`th. Called by one thread at a time.
    using Step = std::function<void(size_t done, const std::string& printer)>;

    EachPrinter() = default;
    EachPrinter(const EachPrinter&) = delete;
    EachPrinter& operator=(const EachPrinter&) = delete;
    // Only now the threads end, and with each its channel: a client's close withdraws whatever request stands
    // there unread, also that of another program. Whoever does not want that ends the process instead.
    ~EachPrinter();

    // Works for `most` printers at a time; the reports come in the printers' order. Used once.
    [[nodiscard]] std::vector<PrinterReport> Do(const std::vector<std::string>& printers, size_t most,
                                                const Work& work, const Step& step);

  private:
    std::mutex lock_;
    std::condition_variable progressed_;  // for Do() alone: whoever is done sleeps on
    std::condition_variable ended_;
    size_t running_ = 0;
    size_t done_ = 0;
    bool ends_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace cli
