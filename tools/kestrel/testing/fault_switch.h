// Switches faults of the virtual printer on and off, through the control file that it looks at.
#pragma once

#include <string>

#include "shared/json.h"

namespace cli {

// The faults are off while no such object exists, and when it ends.
class FaultSwitch final {
  public:
    // Throws a value failure when the file cannot be written.
    FaultSwitch(std::string controlFile, const tools::Json& rules);
    FaultSwitch(const FaultSwitch&) = delete;
    FaultSwitch& operator=(const FaultSwitch&) = delete;
    ~FaultSwitch();

    // What the printer says against the rules, once a request has reached it; empty for nothing.
    [[nodiscard]] std::string Refusal() const;

  private:
    std::string path_;
};

}  // namespace cli
