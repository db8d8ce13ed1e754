#include "opl/opl_parser.h"

#include <concepts>
#include <functional>
#include <map>
#include <string_view>

#include "opl/readable_text.h"
#include "sections.h"

using namespace opl;

namespace {

using Messages = std::vector<std::string>;

constexpr const char* kMessages = UNIT_TESTS "/opl/messages.txt";

/// A copy that ends exactly with its last byte, so that a sanitizer sees every read beyond it.
struct ExactCopy {
    explicit ExactCopy(std::string_view text) : bytes(text.begin(), text.end()) {}
    [[nodiscard]] std::string_view View() const { return {bytes.data(), bytes.size()}; }

    const std::vector<char> bytes;
};

/// The way in which messages.txt writes what was read.
std::string Shown(std::integral auto number) {
    return std::to_string(number);
}
std::string Shown(std::string_view bytes) {
    std::string shown;
    opl::AppendReadable(shown, bytes);
    return shown;
}
std::string Shown(const std::vector<uint8_t>& bytes) {
    return Shown(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}
std::string Shown(const Messages& messages) {
    std::string all;
    for (const std::string& message : messages)
        all += (all.empty() ? "" : " + ") + Shown(message);
    return all;
}

constexpr auto kMoreInput = ParseResult::MoreInput;
constexpr auto kMalformed = ParseResult::Malformed;

/// All messages of an input, and what the parser wants behind them.
ParseResult Feed(OPLParser& parser, std::string_view input, Messages& messages) {
    for (;;) {
        const char* message = "untouched";
        uint32_t length = 1;
        const ParseResult result =
            parser.ParseStream(input.data(), static_cast<uint32_t>(input.size()), message, length);
        if (result != ParseResult::MessageReady) {
            EXPECT_EQ(message, nullptr);
            EXPECT_EQ(length, 0u);
            return result;
        }
        messages.emplace_back(message, length);
    }
}

/// The same wherever the stream is cut.
std::string Framed(std::string_view stream) {
    std::string framed;
    for (size_t cut = stream.size(); cut > 0; --cut) {
        OPLParser parser;
        Messages messages;
        const ExactCopy head(stream.substr(0, cut)), tail(stream.substr(cut));
        ParseResult result = Feed(parser, head.View(), messages);
        if (result == kMoreInput && cut < stream.size()) result = Feed(parser, tail.View(), messages);
        const std::string shown = result == kMalformed ? "malformed" : Shown(messages);
        if (cut == stream.size()) framed = shown;
        EXPECT_EQ(framed, shown) << "cut at " << cut;
        if (result == kMalformed) {
            EXPECT_EQ(Feed(parser, "A=1;", messages), kMalformed) << "it is so for good";
        }
    }
    return framed;
}

/// What is not found clears the value from before. The beginnings of the message are read too, for the
/// sanitizer.
template <typename Out>
std::function<std::string(std::string_view)> Reader(bool (*get)(std::string_view, Out&), Out before) {
    return [get, before](std::string_view message) {
        Out value = before;
        for (size_t length = 0; length < message.size(); ++length)
            get(ExactCopy(message.substr(0, length)).View(), value);
        value = before;
        const ExactCopy copy(message);
        const bool found = get(copy.View(), value);
        EXPECT_TRUE(found || value == Out());
        return found ? Shown(value) : "nothing";
    };
}

bool SplitList(std::string_view message, Messages& items) {
    ListItems cut{{"left from an earlier list", "and another"}, {"and its copy"}};
    const bool found = OPLParser::SplitList(message, cut);
    items.assign(cut.views.begin(), cut.views.end());
    EXPECT_EQ(std::ranges::find(cut.copies, "and its copy"), cut.copies.end());
    return found;
}

TEST(Messages, Are_cut_and_read_as_the_device_language_says) {
    const std::map<std::string, std::function<std::string(std::string_view)>> readers = {
        {"Stream", Framed},
        {"Response number", Reader<uint32_t>(OPLParser::GetResponseNumber, 77)},
        {"Index", Reader<uint32_t>(OPLParser::GetIndex, 77)},
        {"Key", Reader<std::string_view>(OPLParser::GetKey, "before")},
        {"Text", Reader<std::string>(OPLParser::GetValue, "before")},
        {"Number", Reader<int32_t>(OPLParser::GetIntValue, 77)},
        {"Boolean", Reader<uint8_t>(OPLParser::GetBoolValue, 77)},
        {"Block", Reader<std::vector<uint8_t>>(OPLParser::GetBinaryValue, {1, 2, 3})},
        {"List", Reader<Messages>(SplitList, {"before"})},
    };
    EXPECT_EQ(Sections(kMessages).size(), readers.size());
    for (const auto& [title, reader] : readers)
        ForEachCase(kMessages, title,
                    [&read = reader](const std::string& message, const std::string& expected) {
                        EXPECT_EQ(read(opl::FromReadable(message).value()), expected);
                    });
}

TEST(Messages, Are_cut_wherever_their_bytes_lie_in_what_is_scanned_at_once) {
    for (size_t length = 1; length < 150; ++length) {
        const std::string item(length, 'a');
        for (const char end : {';', '?'}) {
            const std::string message = "101," + item + "&&B#4=&;?#&" + item + end;
            EXPECT_EQ(Framed(message + "C=1;"), Shown(Messages{message, "C=1;"}));
            Messages items;
            EXPECT_TRUE(SplitList(ExactCopy(message).View(), items));
            EXPECT_EQ(items, (Messages{item + '&', "B#4=&;?#&", item + end}));
        }
    }
}

TEST(Framer, Goes_on_in_the_same_buffer_filled_anew) {
    char buffer[] = "A=12";
    OPLParser parser;
    Messages messages;
    EXPECT_EQ(Feed(parser, {buffer, 4}, messages), kMoreInput);
    std::ranges::copy("3;B?", buffer);
    EXPECT_EQ(Feed(parser, {buffer, 4}, messages), kMoreInput);
    EXPECT_EQ(messages, (Messages{"A=123;", "B?"}));
}

TEST(Framer, Takes_the_longest_message_and_not_a_byte_more) {
    Messages messages;
    const std::string head = "0000,K=";
    for (const bool fits : {true, false}) {
        const std::string value(OPLParser::kMaxMessage - head.size() - (fits ? 1 : 0), 'v');
        OPLParser whole;
        EXPECT_EQ(Feed(whole, head + value + ';', messages), fits ? kMoreInput : kMalformed);
        OPLParser halves;
        EXPECT_EQ(Feed(halves, head + value, messages), kMoreInput);
        EXPECT_EQ(Feed(halves, ";", messages), fits ? kMoreInput : kMalformed);
        EXPECT_EQ(messages,
                  Messages(2, head + value.substr(0, OPLParser::kMaxMessage - head.size() - 1) + ';'));
    }
    const std::string filler(40'000, '\0');
    OPLParser block;
    EXPECT_EQ(Feed(block, "K#999999999999999=" + filler, messages), kMoreInput);
    EXPECT_EQ(Feed(block, filler + filler, messages), kMalformed);
    OPLParser length;
    EXPECT_EQ(Feed(length, "K#" + std::string(OPLParser::kMaxMessage, '0') + "1=a;", messages), kMalformed);
}

}  // namespace
