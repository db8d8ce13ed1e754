// The one running status monitor of a product, as its kernel objects show it.
#pragma once

#include <cstdint>

#include "kwt/object_names.h"
#include "kwt/win_event.h"
#include "kwt/win_mutex.h"

namespace statusmon {

/// The objects vanish with their last user, so that a program that was killed leaves nothing behind. Used by
/// one thread.
class Instance final {
  public:
    explicit Instance(const kwt::ObjectNameTable& names);
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
    /// The library takes the monitor for gone from here on.
    ~Instance();

    /// Waits at most this long to be the only one; false when another one still runs.
    [[nodiscard]] bool Claim(uint32_t timeoutMs);
    /// Tells the library that requests are answered. After a claim.
    void AnnounceRunning();

    /// Asks the running monitor to end.
    void AskToEnd() { end_.Set(); }
    /// Signalled when another process has asked for the end.
    [[nodiscard]] kwt::WinEvent& EndEvent() { return end_; }

  private:
    kwt::WinMutex claim_;
    kwt::WinEvent running_;
    kwt::WinEvent end_;
    bool announced_ = false;
};

}  // namespace statusmon
