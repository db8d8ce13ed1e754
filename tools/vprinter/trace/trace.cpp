// The two forms of a line.
#include "vprinter/trace/trace.h"

#include <fmt/core.h>

#include "catalogue/rows.h"
#include "opl/message_text.h"
#include "shared/json.h"
#include "shared/time_text.h"

namespace vprinter {
namespace {

constexpr size_t kShownBytes = 400;

double Milliseconds(std::chrono::nanoseconds duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

opl::MessageTextOptions Shown(bool showSecrets) {
    return {.endsInSecretKey = showSecrets ? nullptr : catalogue::EndsInSecretKey};
}

}  // namespace

std::string TextLine(const Exchange& exchange, bool showSecrets) {
    opl::MessageTextOptions options = Shown(showSecrets);
    options.maxBytes = kShownBytes;
    return fmt::format("{} {} client {}  {}  ->  {}  {:.3f} ms{}{}\n", tools::LocalTimeOfDay(exchange.time),
                       exchange.port, exchange.clientProcessId, opl::MessageText(exchange.request, options),
                       exchange.reply.empty() ? "(nothing)" : opl::MessageText(exchange.reply, options),
                       Milliseconds(exchange.duration), exchange.remark.empty() ? "" : "  ! ",
                       exchange.remark);
}

std::string JsonLine(const Exchange& exchange, bool showSecrets) {
    const opl::MessageTextOptions options = Shown(showSecrets);
    tools::Json line;
    line["time"] = tools::UtcTime(exchange.time);
    line["printer"] = exchange.port;
    line["client"] = exchange.clientProcessId;
    line["request"] = opl::MessageText(exchange.request, options);
    line["reply"] = opl::MessageText(exchange.reply, options);
    line["ms"] = Milliseconds(exchange.duration);
    if (!exchange.remark.empty()) line["remark"] = exchange.remark;
    return line.Dump() + '\n';
}

void Trace::Write(const Exchange& exchange) {
    if (!IsOn()) return;
    file_.Write(format_ == TraceFormat::Json ? JsonLine(exchange, showSecrets_)
                                             : TextLine(exchange, showSecrets_));
}

}  // namespace vprinter
