// All printers whose metrics are told.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "kestrel/metrics/printer_watch.h"

namespace cli::metrics {

/// Says which printers there are; throws a Failure when that cannot be known.
using ListPrinters = std::function<std::vector<InstalledPrinter>()>;

class WatchedPrinters final {
  public:
    WatchedPrinters(const Library& library, std::string product, uint32_t timeoutMs, ListPrinters list);

    /// Has every printer asked that is not being asked, and waits until all have answered or failed. In the
    /// order of the names. Several threads may ask at a time: a printer is asked once for them.
    [[nodiscard]] std::vector<Snapshot> Ask();
    /// The same within a time, after which what is known of a printer stands for it. One that failed the last
    /// time is hardly waited for.
    [[nodiscard]] std::vector<Snapshot> AskWithin(std::chrono::milliseconds patience);

  private:
    using Watch = std::shared_ptr<PrinterWatch>;

    [[nodiscard]] std::vector<Watch> AskAll();
    [[nodiscard]] std::vector<Watch> Current();

    const Library& library_;
    const std::string product_;
    const uint32_t timeoutMs_;
    const ListPrinters list_;
    std::mutex mutex_;
    std::map<std::pair<std::string, std::string>, Watch> watches_;  // by name and port
};

}  // namespace cli::metrics
