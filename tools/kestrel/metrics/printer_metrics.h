// What is told of printers and of the program that asks them, as metrics.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kestrel/metrics/exposition.h"
#include "kestrel/metrics/printer_watch.h"

namespace cli::metrics {

/// Of a program that goes on: an exporter. One that asks once has nothing to add up.
struct ProgramFigures final {
    uint64_t scrapes = 0;
    double cpuSeconds = 0;
    double residentBytes = 0;
    double startTime = 0;  // seconds since 1970
};

struct Versions final {
    std::string client;
    uint32_t interfaceNumber = 0;
    std::string library;  // its path
};

[[nodiscard]] std::string MetricsText(Format format, const std::vector<Snapshot>& printers,
                                      const Versions& versions, const std::optional<ProgramFigures>& program,
                                      Clock::time_point now);

}  // namespace cli::metrics
