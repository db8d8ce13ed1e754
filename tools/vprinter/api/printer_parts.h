// What a visitor may see and change of a printer between two of its requests.
#pragma once

#include <functional>
#include <string>

#include "vprinter/device/model.h"
#include "vprinter/faults/fault_script.h"
#include "vprinter/requests/responder.h"

namespace vprinter {

/// Belongs to the printer's serving thread.
struct PrinterParts {
    const std::string& port;
    DeviceModel& model;
    Responder& responder;
    FaultScript& faults;
    uint64_t nowMs;  // of the clock that the faults go by
};

using PrinterWork = std::function<void(const PrinterParts&)>;

}  // namespace vprinter
