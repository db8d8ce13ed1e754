// Requests are compared as the record shows them, secrets masked like there.
#include "vprinter/replay/replay.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>

#include "catalogue/rows.h"
#include "opl/message_text.h"
#include "opl/readable_text.h"
#include "shared/text.h"
#include "shared/user_error.h"

namespace vprinter {
namespace {

constexpr size_t kToldBytes = 200;
constexpr std::string_view kNotInRecord = "3400,Not in the record;";
// How far on a client may be that has left something out; further on it is more likely to ask out of turn.
constexpr std::ptrdiff_t kLookAhead = 16;
constexpr double kLongestDelayMs = 3'600'000;

std::string Told(const std::string& request) {
    return request.size() <= kToldBytes ? request : request.substr(0, kToldBytes) + " ...";
}

}  // namespace

Replay::Replay(const tools::ExchangeLog& log, const std::string& name, const std::string& port, Pace pace,
               bool loops)
    : hasSecrets_(log.hasSecrets), pace_(pace), loops_(loops) {
    if (!log.isRecord)
        throw tools::UserError(name + ": this is no record; make one with `kestrel record FILE -- COMMAND`");
    std::set<std::string> printers;
    for (const tools::LoggedExchange& exchange : log.exchanges)
        printers.insert(exchange.printer);
    if (!printers.contains(port) && printers.size() != 1) {
        throw tools::UserError(
            fmt::format("{}: it has exchanges with the printers \"{}\"; name one with --port", name,
                        tools::Joined(printers, " ")));
    }
    const std::string& recorded = printers.contains(port) ? port : *printers.begin();
    for (size_t i = 0; i < log.exchanges.size(); ++i) {
        const tools::LoggedExchange& exchange = log.exchanges[i];
        if (exchange.printer != recorded) continue;
        if (exchange.reply && !opl::FromReadable(*exchange.reply))
            throw tools::UserError(
                fmt::format("{}: the reply of exchange {} is not in the readable form", name, i + 1));
        exchanges_.push_back(exchange);
    }
}

std::string Replay::Expected() const {
    return next_ < exchanges_.size() ? '"' + Told(exchanges_[next_].request) + '"' : "the end of the record";
}

Replay::Answer Replay::Next(std::string_view request) {
    const std::string seen =
        opl::MessageText(request, {.endsInSecretKey = hasSecrets_ ? nullptr : catalogue::EndsInSecretKey,
                                   .form = opl::MessageForm::Readable});
    if (loops_ && next_ == exchanges_.size()) next_ = 0;
    Answer answer;
    const auto isSeen = [&](const tools::LoggedExchange& exchange) { return exchange.request == seen; };
    const auto from = exchanges_.begin() + static_cast<std::ptrdiff_t>(next_);
    const auto end = exchanges_.end();
    auto found = std::find_if(from, end - from > kLookAhead ? from + kLookAhead : end, isSeen);
    const bool goesOn = found != end && isSeen(*found);
    if (!goesOn || found != from) {
        ++departures_;
        answer.departure =
            fmt::format("exchange {}: expected {}, seen \"{}\"", next_ + 1, Expected(), Told(seen));
    }
    if (goesOn) {
        if (found != from) answer.departure += fmt::format("; {} left out", found - from);
        next_ = static_cast<size_t>(found - exchanges_.begin()) + 1;
        ++replayed_;
    } else {
        found = std::ranges::find_if(exchanges_, isSeen);
        if (found == end) {
            answer.reply = kNotInRecord;
            return answer;
        }
    }
    reply_ = found->reply ? opl::FromReadable(*found->reply).value() : std::string();
    answer.reply = reply_;
    if (pace_ == Pace::Real && found->reply)
        answer.delayMs = static_cast<uint32_t>(std::clamp(found->ms, 0.0, kLongestDelayMs));
    return answer;
}

}  // namespace vprinter
