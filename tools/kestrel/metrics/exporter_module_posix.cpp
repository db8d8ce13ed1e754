// What a system tells a process of itself.
#include "kestrel/metrics/exporter_module.h"

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <fstream>

#include "kestrel/failure.h"
#include "kestrel/installation/module.h"

namespace cli::metrics {
namespace {

const auto kStart = std::chrono::system_clock::now();

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

bool CanServe() {
    return true;
}

std::unique_ptr<exporter::Exporter> BeginExporter(const exporter::Setup& setup) {
    auto* const begin = reinterpret_cast<exporter::BeginFunction*>(
        FindInModule("kestrel-exporter.so", exporter::kBeginName, "libcpp-httplib-dev (KESTREL_WEB)"));
    std::string problem;
    std::unique_ptr<exporter::Exporter> exporter(begin(setup, problem));
    if (!exporter) throw UsageFailure(problem, {});
    return exporter;
}

ProgramFigures FiguresOfProgram() {
    ProgramFigures figures;
    rusage usage{};
    if (getrusage(RUSAGE_SELF, &usage) == 0)
        figures.cpuSeconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
    std::ifstream memory("/proc/self/statm");
    double all = 0, resident = 0;
    if (memory >> all >> resident)
        figures.residentBytes = resident * static_cast<double>(sysconf(_SC_PAGESIZE));
    figures.startTime = std::chrono::duration<double>(kStart.time_since_epoch()).count();
    return figures;
}

}  // namespace cli::metrics
