// There is none.
#include "kestrel/failure.h"
#include "kestrel/metrics/exporter_module.h"

namespace cli::metrics {

bool CanServe() {
    return false;
}

std::unique_ptr<exporter::Exporter> BeginExporter(const exporter::Setup&) {
    throw UsageFailure("--listen: this system has no exporter", "write a file with --output");
}

ProgramFigures FiguresOfProgram() {
    return {};
}

}  // namespace cli::metrics
