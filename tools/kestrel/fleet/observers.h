// Printers that are looked at all the time, each by a thread of its own that keeps its selection.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kestrel/fleet/sight.h"
#include "kestrel/printer/printer.h"

namespace cli {

class Observers final {
  public:
    // What is to be seen of a printer; may throw a Failure.
    using Look = std::function<std::vector<std::pair<std::string, std::string>>(const Printer&)>;
    // Called by one thread at a time.
    using Tell = std::function<void(const std::string& printer, const SightEvent& event)>;

    struct Task final {
        std::string product;
        uint32_t timeoutMs;
        std::chrono::milliseconds interval;
        Look look;
        Tell tell;
    };

    // `library` and what the task refers to outlive the process's other threads.
    Observers(const Library& library, Task task, const std::vector<std::string>& printers);
    Observers(const Observers&) = delete;
    Observers& operator=(const Observers&) = delete;
    // From now on nothing is told. The threads are left where they are, perhaps in an exchange: the process
    // is to end without unloading.
    ~Observers();

  private:
    struct Shared;
    std::shared_ptr<Shared> shared_;
};

}  // namespace cli
