// How many printers are done, for whoever looks at standard error.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace cli {

// A bar on a terminal; elsewhere a line now and then, so that a log shows what takes long and nothing of what
// does not.
class FleetProgress final {
  public:
    FleetProgress(size_t printers, bool wanted);
    ~FleetProgress();
    FleetProgress(const FleetProgress&) = delete;
    FleetProgress& operator=(const FleetProgress&) = delete;

    // The `done`th printer.
    void Show(size_t done, const std::string& printer);

  private:
    const size_t printers_;
    const bool wanted_;
    const bool onTerminal_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point shown_ = start_;
};

}  // namespace cli
