// The log as the JSON that the page's script reads.
#include "kestrel/log/page.h"

#include <fmt/core.h>
#include <kestrel/sdk_text.h>

#include <algorithm>
#include <charconv>

#include "catalogue/rows.h"
#include "kestrel/failure.h"
#include "opl/vocabulary.h"
#include "shared/json.h"
#include "shared/text.h"

namespace cli {
namespace {

struct WordRow {
    opl::Word word;
    const char* meaning;
};
constexpr WordRow kWordMeanings[] = {
    {opl::Word::Ping, "is anybody there"},
    {opl::Word::Cancel, "cancel what is under way"},
    {opl::Word::LockPrinter, "lock the printer"},
    {opl::Word::UnlockPrinter, "unlock the printer"},
    {opl::Word::ClearFWCaps, "forget the firmware's capabilities"},
    {opl::Word::OrderInk, "order supplies"},
    {opl::Word::GetStatus, "get the status"},
    {opl::Word::GetCapabilities, "get the capabilities"},
};

// The setting's name where the key is one's.
std::string NameOf(std::string_view key) {
    const auto row = std::ranges::find(catalogue::Rows(), key, &catalogue::Row::key);
    return std::string(!key.empty() && row != catalogue::Rows().end() ? row->name : key);
}

// One command without what ends it, which is `end`.
std::string CommandWords(std::string_view command, char end) {
    const size_t value = command.find_first_of("=#");
    const std::string name = NameOf(command.substr(0, value));
    if (value == std::string_view::npos) return (end == '?' ? "get " : "") + name;
    if (end == '?') return std::string(command);
    const size_t begin = command.find('=', value);
    return fmt::format("set {} to {}", name,
                       begin == std::string_view::npos ? "" : command.substr(begin + 1));
}

// The printer's reason, from a reply that begins with a number which is no good one.
std::string RefusalWords(std::string_view reply) {
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(reply.data(), reply.data() + reply.size(), number);
    if (error != std::errc() || end == reply.data() + reply.size() || *end != ',') return {};
    const KestrelResponseText* const known = KestrelFindResponse(number);
    if (known->error == 0) return {};
    return fmt::format("{}: {}", number, known->text);
}

// Of a trace, which has no codes, the reply tells.
std::string ErrorWords(const tools::LoggedExchange& exchange) {
    std::string refusal = exchange.reply ? RefusalWords(*exchange.reply) : std::string();
    if (exchange.error == 0) return refusal;
    const KestrelErrorText* const known = KestrelFindError(exchange.error);
    const std::string text = known != nullptr ? known->text : "an error of the system";
    return fmt::format("{} [{}]{}{}", text, CodeText(exchange.error), refusal.empty() ? "" : "; ", refusal);
}

// No end tag and no comment can begin in it.
std::string InsideScript(const std::string& json) {
    std::string text;
    for (const char c : json) {
        if (c == '<') {
            text += "\\u003c";
        } else {
            text += c;
        }
    }
    return text;
}

}  // namespace

std::string RequestWords(std::string_view request) {
    std::string words;
    while (!request.empty()) {
        size_t end = 0;
        while (end < request.size() && request[end] != '?' && request[end] != ';')
            end += request[end] == '\\' ? 2 : 1;
        end = std::min(end, request.size());
        const std::string_view command = request.substr(0, end);
        const std::string_view whole = request.substr(0, std::min(end + 1, request.size()));
        const auto word = std::ranges::find_if(
            kWordMeanings, [&](const WordRow& row) { return opl::WordText(row.word) == whole; });
        if (!words.empty()) words += ", ";
        words += word != std::end(kWordMeanings)
                     ? word->meaning
                     : CommandWords(command, end < request.size() ? request[end] : '\0');
        request.remove_prefix(whole.size());
    }
    return words;
}

std::string LogPage(const tools::ExchangeLog& log) {
    size_t failed = 0;
    tools::Json exchanges = tools::Json::EmptyArray();
    for (const tools::LoggedExchange& exchange : log.exchanges) {
        const std::string error = ErrorWords(exchange);
        if (!error.empty() || !exchange.remark.empty()) ++failed;
        tools::Json line = {{"time", exchange.time},       {"printer", exchange.printer},
                            {"client", exchange.client},   {"words", RequestWords(exchange.request)},
                            {"request", exchange.request}, {"ms", exchange.ms}};
        if (exchange.reply) line["reply"] = *exchange.reply;
        if (!error.empty()) line["error"] = error;
        if (!exchange.remark.empty()) line["remark"] = exchange.remark;
        exchanges.Append(std::move(line));
    }
    const tools::Json data = {{"kind", log.isRecord ? "record of a program" : "trace of a virtual printer"},
                              {"count", log.exchanges.size()},
                              {"failed", failed},
                              {"exchanges", std::move(exchanges)}};
    const size_t mark = kLogPage.find(kLogDataMark);
    std::string page(kLogPage.substr(0, mark));
    page += InsideScript(data.Dump());
    page += kLogPage.substr(mark + kLogDataMark.size());
    return page;
}

}  // namespace cli
