#include "statusmon/instance.h"

namespace statusmon {

Instance::Instance(const kwt::ObjectNameTable& names)
    : claim_(names[kwt::ObjectName::StatusMonitor].c_str(), false),
      running_(names[kwt::ObjectName::StatusMonitorClass].c_str(), false),
      end_(names[kwt::ObjectName::TerminatorThreadClose].c_str(), false) {}

// A client that looks at this very moment keeps the event alive.
Instance::~Instance() {
    if (announced_) running_.Reset();
}

bool Instance::Claim(uint32_t timeoutMs) {
    kwt::WaitResult result = claim_.Lock(timeoutMs);
    // The one that died without giving it up.
    if (result == kwt::WaitResult::Abandoned) result = claim_.Lock(timeoutMs);
    if (result != kwt::WaitResult::Signaled) return false;
    end_.Reset();
    return true;
}

void Instance::AnnounceRunning() {
    announced_ = true;
    running_.Set();
}

}  // namespace statusmon
