// Everything that a printer says, as one document that a virtual printer can be made from.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "kestrel/printer/printer.h"
#include "shared/json.h"

namespace cli {

struct PrinterDump final {
    tools::Json document;
    size_t asked = 0;
    size_t failed = 0;  // answers that are recorded as errors
};

// Asks the printer for everything that it tells; nothing is set, started or waited for. What it refuses or
// leaves unanswered stands in the document as the error that the client reports, with the request and the
// reply, from which the printer can be made again. `step` is told what comes next.
//
// Throws a failure when the printer answers nothing at all, and while its firmware is being replaced.
[[nodiscard]] PrinterDump DumpPrinter(const Printer& printer, bool withSecrets, uint32_t timeoutMs,
                                      const std::function<void(std::string_view)>& step);

}  // namespace cli
