// A printer that answers from a record: what was answered then is answered now, in the same order.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "shared/exchange_log.h"

namespace vprinter {

/// How long a reply takes: as long as it took then, or no time.
enum class Pace : uint8_t { Fast, Real };

/// Belongs to the printer's serving thread.
class Replay final {
  public:
    /// The exchanges of the printer on `port`, or of the only printer that the record knows. Throws UserError
    /// when there are none, or when they are those of several others.
    Replay(const tools::ExchangeLog& log, const std::string& name, const std::string& port, Pace pace,
           bool loops);

    struct Answer {
        std::string_view reply;  // empty: none, as then; valid until the next call
        uint32_t delayMs = 0;
        /// In words what was expected and what came; empty when it is the same.
        std::string departure;
    };
    /// The reply that the record has for the request. A request that is not the next one is a departure: the
    /// replay goes on behind it where it is one of the next few; else the reply is the one that the record
    /// has for it anywhere, or a refusal, and the replay stays where it is.
    [[nodiscard]] Answer Next(std::string_view request);

    /// All has been answered; never true of a loop.
    [[nodiscard]] bool IsOver() const { return !loops_ && next_ == exchanges_.size(); }
    [[nodiscard]] size_t Replayed() const { return replayed_; }
    [[nodiscard]] size_t Departures() const { return departures_; }

  private:
    [[nodiscard]] std::string Expected() const;

    std::vector<tools::LoggedExchange> exchanges_;
    bool hasSecrets_;
    Pace pace_;
    bool loops_;
    size_t next_ = 0;
    size_t replayed_ = 0;
    size_t departures_ = 0;
    std::string reply_;
};

}  // namespace vprinter
