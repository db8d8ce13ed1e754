// One JSON object a line.
#include "shared/exchange_log.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>

#include "shared/file.h"
#include "shared/json.h"
#include "shared/user_error.h"

namespace tools {
namespace {

constexpr int kVersion = 1;
constexpr uintmax_t kMostBytes = 256u << 20;

// Of a record: what it is. Any number of processes may begin a file at the same time, so it may stand there
// more than once.
void ReadHeading(const Json& line, ExchangeLog& log) {
    if (line.At("format") != "kestrel-record") throw JsonError("this is no record of exchanges");
    if (line.At("version") != kVersion) {
        throw JsonError(fmt::format("it is of version {}, and this program reads version {}",
                                    line.At("version").Dump(), kVersion));
    }
    log.isRecord = true;
    log.hasSecrets = line.At("secrets") == "included";
}

LoggedExchange ReadExchange(const Json& line) {
    LoggedExchange exchange;
    exchange.time = line.At("time").Text();
    exchange.printer = line.At("printer").Text();
    exchange.client = line.At("client").Unsigned();
    exchange.request = line.At("request").Text();
    if (const Json* const reply = line.Find("reply"); reply != nullptr && !reply->Text().empty())
        exchange.reply = reply->Text();
    exchange.ms = line.At("ms").Real();
    if (const Json* const error = line.Find("error"))
        exchange.error = static_cast<uint32_t>(std::min<uint64_t>(error->Unsigned(), UINT32_MAX));
    if (const Json* const remark = line.Find("remark")) exchange.remark = remark->Text();
    return exchange;
}

}  // namespace

ExchangeLog ParseExchangeLog(std::string_view text, const std::string& name) {
    ExchangeLog log;
    for (size_t number = 1; !text.empty(); ++number) {
        const size_t end = text.find('\n');
        if (end == std::string_view::npos && number > 1) break;
        const std::string_view line = text.substr(0, end);
        try {
            const Json json = Json::Parse(line);
            if (json.Find("format") != nullptr) {
                ReadHeading(json, log);
            } else {
                log.exchanges.push_back(ReadExchange(json));
            }
        } catch (const JsonError& error) {
            throw UserError(fmt::format(
                "{}:{}: {}; expected a line of `kestrel record`, or of a virtual printer's --trace json",
                name, number, error.what()));
        }
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return log;
}

ExchangeLog LoadExchangeLog(const std::string& path) {
    std::error_code error;
    const uintmax_t size = std::filesystem::file_size(path, error);
    if (!error && size > kMostBytes)
        throw UserError(fmt::format("{}: it has {} bytes, expected at most {}", path, size, kMostBytes));
    const std::optional<std::string> text = ReadFile(path);
    if (!text) throw UserError(path + ": it cannot be read; check the name and its permissions");
    return ParseExchangeLog(*text, path);
}

}  // namespace tools
