// What passes between this process and its printers, kept in a file for whoever wants to look at it or to
// replay it.
//
//   KESTREL_RECORD=FILE          appends a line for each exchange
//   KESTREL_RECORD_SECRETS=1     with security keys and the pass phrase, which are ***** otherwise
//
// They are looked at when the library is loaded. The first line of a file says what it is; every other one
// is an exchange, as JSON:
//
//   {"format":"kestrel-record","version":1,"secrets":"left out"}
//   {"time":"2026-11-25T18:30:05.250Z","client":4711,"printer":"USB001","timeoutMs":5000,
//    "request":"DeviceSettings.Fax.Redials?","reply":"0000,DeviceSettings.Fax.Redials=3;","ms":0.041,"error":0}
//
// `client` is the process, `ms` the time until the reply or the failure, `error` the last-error value of the
// exchange, 0 for a good reply. Messages are in the readable form of opl/readable_text.h. An exchange
// without a reply has no `reply`. The announcement of a time-out is part of the exchange that it precedes.
#pragma once

#include <chrono>
#include <cstdint>
#include <string_view>

#include "kwt/wide_text.h"

namespace session {

namespace detail {
extern const bool kIsRecording;
}

/// Whether anybody wants a record.
[[nodiscard]] inline bool IsRecording() {
    return detail::kIsRecording;
}

/// One exchange, from its making to Keep. A line is one write to the end of the file, so that any number of
/// threads and processes may share it.
class ExchangeRecord final {
  public:
    ExchangeRecord() : time_(std::chrono::system_clock::now()), start_(std::chrono::steady_clock::now()) {}

    struct Outcome {
        std::string_view request;
        std::string_view reply;  // empty for none
        uint32_t timeoutMs = 0;
        uint32_t error = 0;
    };
    /// What cannot be written is left out; the exchange is not to suffer for it. `channelName`: of the
    /// command channel, which ends in the printer's port.
    void Keep(const WideText& channelName, const Outcome& outcome) const noexcept;

  private:
    std::chrono::system_clock::time_point time_;
    std::chrono::steady_clock::time_point start_;
};

}  // namespace session
