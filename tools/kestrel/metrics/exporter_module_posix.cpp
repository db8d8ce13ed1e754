// A module stays loaded: the process ends without unloading anything.
#include "kestrel/metrics/exporter_module.h"

#include <dlfcn.h>
#include <fmt/core.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "kestrel/failure.h"
#include "kestrel/installation/helpers.h"

namespace cli::metrics {
namespace {

constexpr const char* kModule = "kestrel-exporter.so";

const auto kStart = std::chrono::system_clock::now();

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

exporter::BeginFunction* LoadModule() {
    const std::filesystem::path path = FindHelper(kModule);
    void* const module = path.empty() ? nullptr : dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module != nullptr) {
        if (void* const begin = dlsym(module, exporter::kBeginName))
            return reinterpret_cast<exporter::BeginFunction*>(begin);
    }
    throw Failure{ExitCode::OwnFault,
                  path.empty()
                      ? fmt::format("there is no {} beside this program or in its folder of helpers", kModule)
                      : fmt::format("cannot load the exporter: {}", dlerror()),
                  "install the package kestrel-tools whole, or build with libcpp-httplib-dev (KESTREL_WEB)",
                  {},
                  {},
                  {}};
}

}  // namespace

bool CanServe() {
    return true;
}

std::unique_ptr<exporter::Exporter> BeginExporter(const exporter::Setup& setup) {
    exporter::BeginFunction* const begin = LoadModule();
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
