// An exchange for people: the texts of the trace, and the reply taken apart.
#include <fmt/core.h>

#include <algorithm>

#include "catalogue/rows.h"
#include "opl/message_text.h"
#include "opl/opl_parser.h"
#include "opl/readable_text.h"
#include "opl/vocabulary.h"
#include "shared/time_text.h"
#include "vprinter/api/traffic.h"
#include "vprinter/api/views.h"
#include "vprinter/device/status_block.h"
#include "vprinter/files/byte_text.h"

namespace vprinter::api {
namespace {

constexpr size_t kShownText = 1000;
constexpr size_t kShownBytes = 256;
constexpr size_t kShownItems = 40;
constexpr size_t kShownValue = 200;

std::string HexText(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes)
        opl::AppendHexByte(text, byte);
    return text;
}

std::string StatusText(std::string_view block) {
    const auto byte = [&](size_t at) { return static_cast<uint32_t>(static_cast<uint8_t>(block[at])); };
    uint32_t state = 0;
    for (size_t i = 4; i-- > 0;)
        state = state << 8 | byte(status_layout::kState + i);
    std::string text;
    for (size_t at = status_layout::kText; at + 1 < status_layout::kFirmware && byte(at) != 0; at += 2)
        text += block[at];
    return fmt::format("{}: {}", StateWord(state), ToUtf8(text));
}

std::string BlockText(std::string_view key, std::string_view block) {
    if (block.size() == 4) return DottedAddress(block);
    if (key == "ZRGetStatus" && block.size() == status_layout::kWhole) return StatusText(block);
    return fmt::format("{} bytes", block.size());
}

std::string ValueText(std::string_view key, std::string_view item) {
    std::vector<uint8_t> block;
    if (opl::OPLParser::GetBinaryValue(item, block))
        return BlockText(key, {reinterpret_cast<const char*>(block.data()), block.size()});
    std::string value;
    static_cast<void>(opl::OPLParser::GetValue(item, value));
    return ToUtf8(value.substr(0, kShownValue));
}

tools::Json Decoded(std::string_view reply) {
    tools::Json items = tools::Json::EmptyArray();
    opl::ListItems parts;
    if (!opl::OPLParser::SplitList(reply, parts)) return items;
    for (const std::string_view part : parts.views) {
        std::string_view key;
        if (items.Items().size() == kShownItems) break;
        if (!opl::OPLParser::GetKey(part, key)) continue;
        tools::Json item = {{"key", ToUtf8(key)}};
        const auto rows = catalogue::Rows();
        const auto row = std::ranges::find(rows, key, &catalogue::Row::key);
        if (row != rows.end()) item["name"] = row->name;
        const bool secret = row != rows.end() && row->IsSecret();
        item["value"] = secret ? std::string(kMask) : ValueText(key, part);
        items.Append(std::move(item));
    }
    return items;
}

}  // namespace

tools::Json ExchangeView(const KeptExchange& kept) {
    const auto text = [](std::string_view message) {
        return opl::MessageText(message,
                                {.endsInSecretKey = catalogue::EndsInSecretKey, .maxBytes = kShownText});
    };
    const std::string replyBytes = opl::MessageText(
        kept.reply, {.endsInSecretKey = catalogue::EndsInSecretKey, .form = opl::MessageForm::Bytes});
    tools::Json view;
    view["number"] = kept.number;
    view["time"] = tools::UtcTime(kept.exchange.time);
    view["printer"] = kept.port;
    view["client"] = kept.exchange.clientProcessId;
    view["request"] = text(kept.request);
    view["reply"] = text(kept.reply);
    view["replyBytes"] = kept.replyBytes;
    view["bytes"] = HexText(std::string_view(replyBytes).substr(0, kShownBytes));
    view["decoded"] = Decoded(kept.reply);
    view["ms"] = std::chrono::duration<double, std::milli>(kept.exchange.duration).count();
    if (!kept.remark.empty()) view["remark"] = kept.remark;
    return view;
}

}  // namespace vprinter::api
