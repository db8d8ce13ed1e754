#include "vprinter/trace/trace.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "vprinter/trace/message_text.h"

namespace vprinter {
namespace {

constexpr size_t kShownBytes = 400;

double Milliseconds(std::chrono::nanoseconds duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

int MillisecondOfSecond(std::chrono::system_clock::time_point time) {
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    return static_cast<int>(sinceEpoch.count() % 1000);
}

}  // namespace

std::string TextLine(const Exchange& exchange, bool showSecrets) {
    const MessageTextOptions options{showSecrets, kShownBytes};
    const std::time_t time = std::chrono::system_clock::to_time_t(exchange.time);
    return fmt::format("{:%H:%M:%S}.{:03} {} client {}  {}  ->  {}  {:.3f} ms{}{}\n", fmt::localtime(time),
                       MillisecondOfSecond(exchange.time), exchange.port, exchange.clientProcessId,
                       MessageText(exchange.request, options),
                       exchange.reply.empty() ? "(nothing)" : MessageText(exchange.reply, options),
                       Milliseconds(exchange.duration), exchange.remark.empty() ? "" : "  ! ",
                       exchange.remark);
}

std::string JsonLine(const Exchange& exchange, bool showSecrets) {
    const MessageTextOptions options{showSecrets};
    const std::time_t time = std::chrono::system_clock::to_time_t(exchange.time);
    nlohmann::ordered_json line;
    line["time"] =
        fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z", fmt::gmtime(time), MillisecondOfSecond(exchange.time));
    line["printer"] = exchange.port;
    line["client"] = exchange.clientProcessId;
    line["request"] = MessageText(exchange.request, options);
    line["reply"] = MessageText(exchange.reply, options);
    line["ms"] = Milliseconds(exchange.duration);
    if (!exchange.remark.empty()) line["remark"] = exchange.remark;
    return line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

bool Trace::OpenFile(const std::string& path) {
    file_.reset(std::fopen(path.c_str(), "a"));
    return file_ != nullptr;
}

void Trace::Write(const Exchange& exchange) {
    if (!IsOn()) return;
    const std::string line =
        format_ == TraceFormat::Json ? JsonLine(exchange, showSecrets_) : TextLine(exchange, showSecrets_);
    std::FILE* const file = file_ ? file_.get() : stderr;
    const std::lock_guard guard(lock_);
    std::fwrite(line.data(), 1, line.size(), file);
    std::fflush(file);
}

}  // namespace vprinter
