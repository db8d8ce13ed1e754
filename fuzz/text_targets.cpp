// The command language: nothing but bytes.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "opl/opl_builder.h"
#include "opl/opl_parser.h"
#include "session/response_judgement.h"
#include "targets.h"
#include "vprinter/requests/request_reader.h"

namespace fuzz {

namespace {

struct Framed {
    std::vector<std::string> messages;
    bool malformed = false;
    friend bool operator==(const Framed&, const Framed&) = default;
};

// Every piece lies in memory of its own, so that a look beyond its end is seen.
Framed FrameInPieces(std::string_view stream, size_t piece) {
    const auto parser = std::make_unique<opl::OPLParser>();
    Framed framed;
    std::vector<std::vector<char>> pieces;  // the parser knows an input by its address: none is used twice
    while (!stream.empty() && !framed.malformed) {
        const size_t size = std::min(piece, stream.size());
        const auto& part = pieces.emplace_back(stream.begin(), stream.begin() + static_cast<ptrdiff_t>(size));
        stream.remove_prefix(size);
        for (opl::ParseResult result = opl::ParseResult::MessageReady;
             result == opl::ParseResult::MessageReady;) {
            const char* message = nullptr;
            uint32_t length = 0;
            result = parser->ParseStream(part.data(), static_cast<uint32_t>(size), message, length);
            if (result == opl::ParseResult::MessageReady) framed.messages.emplace_back(message, length);
            Require((result == opl::ParseResult::MessageReady) == (message != nullptr), "a message or none");
            framed.malformed = result == opl::ParseResult::Malformed;
        }
    }
    return framed;
}

void Framer(std::string_view bytes) {
    if (bytes.empty()) return;
    const size_t piece = 1 + static_cast<unsigned char>(bytes.front()) % 32;
    const std::string_view stream = bytes.substr(1);
    const Framed whole = FrameInPieces(stream, stream.size());
    Require(whole == FrameInPieces(stream, piece), "the pieces of a stream do not matter");
    std::string joined;
    for (const std::string& message : whole.messages)
        joined += message;
    Require(stream.starts_with(joined), "messages are the stream, in order, without gaps");
}

// As the language has it, and no faster.
std::vector<std::string> Items(std::string_view message) {
    constexpr std::string_view kDelimiters = "&;?";
    std::vector<std::string> items;
    const size_t comma = message.find_first_of(",&;?");
    if (comma == std::string_view::npos || message[comma] != ',') return items;
    for (message.remove_prefix(comma + 1);
         !message.empty() && !opl::OPLParser::IsDelimiter(message.front());) {
        std::vector<uint8_t> block;
        const size_t length = opl::OPLParser::GetBinaryValue(message, block)
                                  ? message.find('=') + 1 + block.size()
                                  : std::min(message.find_first_of(kDelimiters), message.size());
        items.push_back(std::string(message.substr(0, length)) + ';');
        message.remove_prefix(std::min(length + 1, message.size()));
        message.remove_prefix(std::min(message.find_first_not_of('&'), message.size()));
    }
    return items;
}

void CheckList(std::string_view message) {
    opl::ListItems items{{"left", "over"}, {"and this"}};
    Require(opl::OPLParser::SplitList(message, items) == !items.views.empty(), "items or failure");
    std::vector<std::string> closed;
    for (const std::string_view item : items.views) {
        Require(opl::OPLParser::IsDelimiter(item.back()), "an item is a message");
        closed.emplace_back(item).back() = ';';
    }
    Require(closed == Items(message), "the items that are found byte by byte");
}

void Extraction(std::string_view bytes) {
    const std::vector<char> own(bytes.begin(), bytes.end());
    const std::string_view message(own.data(), own.size());
    std::string_view key;
    if (opl::OPLParser::GetKey(message, key))
        Require(key.data() >= own.data() && key.data() + key.size() <= own.data() + own.size(),
                "the key is a part of the message");
    std::string text = "before";
    Require(opl::OPLParser::GetValue(message, text) || text.empty(), "no text on failure");
    std::vector<uint8_t> block(3);
    Require(opl::OPLParser::GetBinaryValue(message, block) || block.empty(), "no block on failure");
    Require(block.size() <= message.size(), "the block is a part of the message");
    int32_t number = 7;
    Require(opl::OPLParser::GetIntValue(message, number) || number == 0, "0 on failure");
    uint8_t flag = 7;
    Require(opl::OPLParser::GetBoolValue(message, flag) ? flag <= 1 : flag == 0, "0 or 1, 0 on failure");
    uint32_t index = 7;
    Require(opl::OPLParser::GetIndex(message, index) || index == 0, "0 on failure");
    CheckList(message);
}

void ResponseNumber(std::string_view bytes) {
    uint64_t expected = 0;
    size_t digits = 0;
    for (; digits < bytes.size() && bytes[digits] >= '0' && bytes[digits] <= '9'; ++digits)
        expected = std::min<uint64_t>(expected * 10 + static_cast<uint64_t>(bytes[digits] - '0'), UINT32_MAX);
    const bool has = digits < bytes.size() && bytes[digits] == ',';
    const std::vector<char> own(bytes.begin(), bytes.end());
    uint32_t number = 1;
    Require(opl::OPLParser::GetResponseNumber({own.data(), own.size()}, number) == has, "digits and a comma");
    Require(number == (has ? expected : 0), "the number before the comma");
    Require(session::ErrorOfResponse(number) != 0 || number <= 1000 || (number >= 4000 && number <= 4199) ||
                number == 100000,
            "good numbers alone are good");
}

// What is built and framed again is what went in; and a value that was read is built as the text that it was
// read from. The escape codes themselves have no code of their own, so a plain text with one of them is not
// told from structure.
void BuiltAndRead(const std::string& plain) {
    const opl::OPLBuilder builder;
    std::string request;
    builder.AppendSetText(request, opl::Key::FriendlyName, plain);
    builder.AppendRecordSet(request, opl::RecordList::OneTouch, 3, opl::RecordField::Name, plain);
    const Framed framed = FrameInPieces(request, request.size());
    Require(!framed.malformed && framed.messages.size() == 2, "two commands are two messages");
    for (const std::string& message : framed.messages) {
        std::string text;
        Require(opl::OPLParser::GetValue(message, text) && text == plain, "the text that was built");
    }
}

void RoundTrip(std::string_view bytes) {
    std::string plain(bytes);
    std::erase_if(plain, [](char byte) { return byte >= 0x19 && byte <= 0x1F; });
    BuiltAndRead(plain);
    std::string value;
    if (!opl::OPLParser::GetValue(bytes, value)) return;
    std::string again;
    opl::OPLBuilder().AppendSetText(again, opl::Key::FriendlyName, value);
    const std::string_view built = std::string_view(again).substr(again.find('='), value.size() + 1);
    Require(bytes.substr(bytes.find('=')).starts_with(built), "the text that was read");
}

void Requests(std::string_view bytes) {
    const std::vector<char> own(bytes.begin(), bytes.end());
    vprinter::RequestReader reader({own.data(), own.size()});
    vprinter::Command command;
    size_t total = 0;
    while (reader.Next(command)) {
        total += command.text.size();
        Require((command.kind == vprinter::CommandKind::Malformed) == (command.fault != nullptr),
                "a fault is named");
    }
    Require(total <= bytes.size(), "commands are parts of the request");
}

constexpr Target kTextTargets[] = {
    {"framer", Framer},        {"extraction", Extraction}, {"response_number", ResponseNumber},
    {"round_trip", RoundTrip}, {"requests", Requests},
};

}  // namespace

std::span<const Target> TextTargets() {
    return kTextTargets;
}

}  // namespace fuzz
