// The exporter, which is loaded only where it is wanted.
#pragma once

#include <functional>
#include <memory>

#include "exporter/exporter.h"
#include "kestrel/metrics/printer_metrics.h"

namespace cli::metrics {

/// Whether this system can have one.
[[nodiscard]] bool CanServe();

/// Loads the module and lets it listen. Throws a Failure.
[[nodiscard]] std::unique_ptr<exporter::Exporter> BeginExporter(const exporter::Setup& setup);

/// What this process has used; the scrapes are the caller's.
[[nodiscard]] ProgramFigures FiguresOfProgram();

}  // namespace cli::metrics
