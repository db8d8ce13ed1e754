#include "opl/opl_parser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_literals;

using Messages = std::vector<std::string>;

/// A copy that ends exactly with its last byte, so that a sanitizer sees every read beyond it.
class ExactCopy final {
  public:
    explicit ExactCopy(std::string_view text)
        : size_(text.size()), bytes_(std::make_unique_for_overwrite<char[]>(size_)) {
        std::ranges::copy(text, bytes_.get());
    }
    [[nodiscard]] std::string_view View() const { return {bytes_.get(), size_}; }

  private:
    size_t size_;
    std::unique_ptr<char[]> bytes_;
};

struct Framed {
    ParseResult result;
    std::string message;
};

Framed Feed(OPLParser& parser, std::string_view input) {
    const char* message = "untouched";
    uint32_t length = 1;
    const ParseResult result =
        parser.ParseStream(input.data(), static_cast<uint32_t>(input.size()), message, length);
    if (result == ParseResult::MessageReady) return {result, {message, length}};
    EXPECT_EQ(message, nullptr);
    EXPECT_EQ(length, 0u);
    return {result, {}};
}

/// All messages of one buffer, and how the framer ended.
std::pair<Messages, ParseResult> FrameAll(std::string_view input) {
    OPLParser parser;
    Messages messages;
    for (;;) {
        Framed framed = Feed(parser, input);
        if (framed.result != ParseResult::MessageReady) return {messages, framed.result};
        messages.push_back(std::move(framed.message));
    }
}

std::optional<std::string> Key(std::string_view message) {
    std::string_view key;
    return OPLParser::GetKey(message, key) ? std::optional<std::string>(key) : std::nullopt;
}

/// What `get` finds in the message; it clears the old value when that is nothing.
template <typename Out>
std::optional<Out> Found(bool (*get)(std::string_view, Out&), std::string_view message, Out value) {
    if (get(message, value)) return value;
    EXPECT_EQ(value, Out{});
    return std::nullopt;
}

std::optional<std::string> Value(std::string_view message) {
    return Found<std::string>(OPLParser::GetValue, message, "old");
}

std::optional<int32_t> Int(std::string_view message) {
    return Found<int32_t>(OPLParser::GetIntValue, message, 77);
}

std::optional<uint8_t> Bool(std::string_view message) {
    return Found<uint8_t>(OPLParser::GetBoolValue, message, 77);
}

std::optional<std::string> Binary(std::string_view message) {
    const auto bytes = Found<std::vector<uint8_t>>(OPLParser::GetBinaryValue, message, {1, 2, 3});
    return bytes ? std::optional(std::string(bytes->begin(), bytes->end())) : std::nullopt;
}

std::optional<uint32_t> ResponseNumber(std::string_view message) {
    uint32_t number = 0;
    return OPLParser::GetResponseNumber(message, number) ? std::optional(number) : std::nullopt;
}

std::optional<uint32_t> Index(std::string_view message) {
    uint32_t index = 0;
    return OPLParser::GetIndex(message, index) ? std::optional(index) : std::nullopt;
}

Messages Items(std::string_view message) {
    Messages items{"left from an earlier list", "and another"};
    const bool found = OPLParser::SplitList(message, items);
    EXPECT_EQ(found, !items.empty());
    return items;
}

const std::string kBlockReply = "0000,Key#4=;\0&=;"s;

TEST(Framer, Cuts_a_buffer_into_its_messages) {
    const struct {
        std::string input;
        Messages messages;
    } cases[] = {
        {"0000,DeviceSettings.Fax.Redials=3;", {"0000,DeviceSettings.Fax.Redials=3;"}},
        {"A?B=1?C;rest", {"A?", "B=1?", "C;"}},
        {"3400,DeviceSettings.Foo=1?;X;", {"3400,DeviceSettings.Foo=1?;", "X;"}},
        {"3401,#=&?;", {"3401,#=&?;"}},
        {"3402,Foo=1?;", {"3402,Foo=1?", ";"}},
        {"03400,Foo=1?", {"03400,Foo=1?"}},
        {"0000,A=1&3400,B=2?C=3;", {"0000,A=1&3400,B=2?", "C=3;"}},
        {"One,two,three=1;", {"One,two,three=1;"}},
        {"Key=&&&Key2=1;", {"Key=&&&Key2=1;"}},
        {kBlockReply + "B=1;", {kBlockReply, "B=1;"}},
        {"K#0=;K#3=;;;&L=\n\xFF?", {"K#0=;", "K#3=;;;&L=\n\xFF?"}},
        {"K#9#1=;;", {"K#9#1=;;"}},
        {"K#000000000000002=ab;", {"K#000000000000002=ab;"}},
        {"K#none=;", {"K#none=;"}},
    };
    for (const auto& row : cases) {
        const ExactCopy input(row.input);
        const auto [messages, end] = FrameAll(input.View());
        EXPECT_EQ(messages, row.messages) << row.input;
        EXPECT_EQ(end, ParseResult::MoreInput) << row.input;
    }
}

TEST(Framer, Finds_the_same_message_wherever_the_input_is_cut) {
    const std::string texts[] = {
        "0000,DeviceSettings.Fax.Redials=3;",
        "3400,DeviceSettings.Foo=1?;",
        "101,L[0].MacAddr#6=&;?=#,&L[1].SSID=name;",
        kBlockReply,
    };
    for (const std::string& text : texts) {
        for (size_t cut = 1; cut < text.size(); ++cut) {
            OPLParser parser;
            const ExactCopy head(text.substr(0, cut)), tail(text.substr(cut));
            EXPECT_EQ(Feed(parser, head.View()).result, ParseResult::MoreInput) << text << " at " << cut;
            EXPECT_EQ(Feed(parser, tail.View()).message, text) << "at " << cut;
        }
    }
}

TEST(Framer, Refuses_malformed_streams_for_good) {
    const std::string streams[] = {
        "0000,Ke\ny=1;", "\x7F;", "K\xE9y=1;", "\x1F=1;"s, "K\0=1;"s, "A=1&\tB=2;", "K#0000000000000002=ab;",
    };
    for (const std::string& stream : streams) {
        OPLParser parser;
        EXPECT_EQ(Feed(parser, stream).result, ParseResult::Malformed) << stream;
        EXPECT_EQ(Feed(parser, "A=1;").result, ParseResult::Malformed) << stream;
    }
}

TEST(Framer, Takes_the_longest_message_and_not_a_byte_more) {
    const std::string head = "0000,K=";
    for (const bool fits : {true, false}) {
        const std::string value(OPLParser::kMaxMessage - head.size() - (fits ? 1 : 0), 'v');
        OPLParser whole;
        EXPECT_EQ(Feed(whole, head + value + ';').message.size(), fits ? OPLParser::kMaxMessage : 0);

        OPLParser halves;
        EXPECT_EQ(Feed(halves, head + value).result, ParseResult::MoreInput);
        EXPECT_EQ(Feed(halves, ";").result, fits ? ParseResult::MessageReady : ParseResult::Malformed);
    }
    const std::string filler(40'000, '\0');
    OPLParser block;
    EXPECT_EQ(Feed(block, "K#999999999999999=" + filler).result, ParseResult::MoreInput);
    EXPECT_EQ(Feed(block, filler + filler).result, ParseResult::Malformed);
}

TEST(Extraction, Reads_response_numbers) {
    EXPECT_EQ(ResponseNumber("0000,K=1;"), 0u);
    EXPECT_EQ(ResponseNumber("101,"), 101u);
    EXPECT_EQ(ResponseNumber(",K=1;"), 0u);
    EXPECT_EQ(ResponseNumber("4294967295,K;"), 0xFFFFFFFFu);
    EXPECT_EQ(ResponseNumber("99999999999999999999,K;"), 0xFFFFFFFFu);
    for (const char* none : {"", "101", "K=1;", "12 ,K;", "-1,K;", "1K,2;", ";"})
        EXPECT_EQ(ResponseNumber(none), std::nullopt) << none;
}

TEST(Extraction, Reads_keys) {
    const struct {
        std::string_view message;
        std::optional<std::string> key;
    } cases[] = {
        {"0000,DeviceSettings.Fax.Redials=3;", "DeviceSettings.Fax.Redials"},
        {"Key#4=abcd;", "Key"},
        {"0000,  a b  =3;", "a b"},
        {"12Key?", "12Key"},
        {"12=1;", "12"},
        {"1,2,3=1;", "2,3"},
        {"0000,=1;", ""},
        {"0000,   ;", ""},
        {"Key", {}},
        {"", {}},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Key(ExactCopy(row.message).View()), row.key) << row.message;
}

TEST(Extraction, Reads_text_values_unescaped) {
    EXPECT_EQ(Value("0,K=a\x1D"
                    "b;"),
              "a;b");
    EXPECT_EQ(Value("K=\x19\x1A\x1B\x1C\x1D\x1E\x1F&L=2;"), "#&,.;=?");
    EXPECT_EQ(Value("K=a=b?"),
              "a\x1E"
              "b");
    EXPECT_EQ(Value("K=;"), "");
    EXPECT_EQ(Value("K=\xE4 (null)\x01;"), "\xE4 (null)\x01");
    for (const char* none : {"", "K;", "K?L=1;", "K&L=1;", "K=1"})
        EXPECT_EQ(Value(ExactCopy(none).View()), std::nullopt) << none;
}

TEST(Extraction, Reads_numbers) {
    const struct {
        std::string_view value;
        int32_t number;
    } cases[] = {
        {"3", 3},
        {"-12", -12},
        {"007", 7},
        {"", 0},
        {"-", 0},
        {"0", 0},
        {"0x1F", 31},
        {"0X1f", 31},
        {"0xFFFFFFFE", -2},
        {"2147483647", INT32_MAX},
        {"-2147483648", INT32_MIN},
        {"99999999999", INT32_MAX},
        {"-99999999999", INT32_MIN},
        {"0x100000000", -1},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Int("0000,K=" + std::string(row.value) + ";"), row.number) << row.value;
    for (const std::string none :
         {"+5", " 5", "5 ", "--5", "5-", "0x", "0x-1", "0xG", "0x1G", "x1", "-0x1", "1\x1C", "99999999999z"})
        EXPECT_EQ(Int("0000,K=" + none + ";"), std::nullopt) << none;
    EXPECT_EQ(Int("K;"), std::nullopt);
    EXPECT_EQ(Int("K=5"), std::nullopt);
}

TEST(Extraction, Reads_the_eight_boolean_words) {
    for (const std::string yes : {"TRUE", "YES", "yes", "yEs", "ON", "ENABLE"})
        EXPECT_EQ(Bool("0000,K=" + yes + ";"), 1) << yes;
    for (const std::string no : {"FALSE", "NO", "no", "No", "OFF", "DISABLE"})
        EXPECT_EQ(Bool("0000,K=" + no + ";"), 0) << no;
    for (const std::string none :
         {"true", "on", "On", "Off", "enable", "disable", "YE", "YESS", "1", "Y", ""})
        EXPECT_EQ(Bool("0000,K=" + none + ";"), std::nullopt) << none;
    EXPECT_EQ(Bool("K;"), std::nullopt);
}

TEST(Extraction, Reads_binary_blocks_and_distrusts_their_counts) {
    const struct {
        std::string message;
        std::string block;
    } cases[] = {
        {kBlockReply, ";\0&="s}, {"K#0=;", ""},   {"K#4=abcd", "abcd"},
        {"K#2=abcd;", "ab"},     {"K#x=ab;", ""}, {"K#;=ab;", ""},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Binary(ExactCopy(row.message).View()), row.block) << row.message;
    for (const char* none : {"K#5=abcd", "K#4294967295=ab;", "K#4294967296=ab;", "K#99999999999999999999=ab;",
                             "K#-1=ab;", "K#=ab;", "K#4;abcd=", "K;L#1=a;", "K#", "K#4", ""})
        EXPECT_EQ(Binary(ExactCopy(none).View()), std::nullopt) << none;
}

TEST(Extraction, Splits_lists_into_messages) {
    const struct {
        std::string message;
        Messages items;
    } cases[] = {
        {"0000,A=1&&B=2;", {"A=1;", "B=2;"}},
        {"101,A[0].M#3=&;?&&A[1].S=x;", {"A[0].M#3=&;?;", "A[1].S=x;"}},
        {"101,A=1&B#1=&;", {"A=1;", "B#1=&;"}},
        {"101,A=1", {"A=1;"}},
        {"101,B#2=ab", {"B#2=ab;"}},
        {"101,B#9=ab&C=1;", {"B#9=ab;", "C=1;"}},
        {"101,A=1&", {"A=1;"}},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Items(ExactCopy(row.message).View()), row.items) << row.message;
    for (const char* none : {"A=1&B=2;", "A;1,B=2;", "101,;", "101,&A=1;", "101,", ""})
        EXPECT_EQ(Items(ExactCopy(none).View()), Messages()) << none;
}

TEST(Extraction, Reads_the_index_of_a_key) {
    EXPECT_EQ(Index("101,List[3].SSID=x;"), 3u);
    EXPECT_EQ(Index("List[12x].SSID=x;"), 12u);
    EXPECT_EQ(Index("L[1][2]=x;"), 1u);
    EXPECT_EQ(Index("L[99999999999]=x;"), 0xFFFFFFFFu);
    for (const char* none : {"List=x[3];", "List[]=x;", "List[-1]=x;", "List[", "List[;", ""})
        EXPECT_EQ(Index(ExactCopy(none).View()), std::nullopt) << none;
}

void ExtractEverything(std::string_view message) {
    ResponseNumber(message);
    Key(message);
    Value(message);
    Int(message);
    Bool(message);
    Binary(message);
    Items(message);
    Index(message);
    FrameAll(message);
}

TEST(Hostile, Cut_and_spoilt_messages_are_never_read_beyond_their_end) {
    const std::string texts[] = {
        kBlockReply,
        "101,Access[0].MacAddr#6=\x01&;?=#&Access[0].SSID=a\x1D"
        "b&&Access[1].Channel=0x1F;",
        "3400,Foo=1?;",
        "0000,DeviceSettings.System.Time.Year=2012&DeviceSettings.System.Time.Month=3;",
        "K#4294967295=&L#9=;M=-;",
    };
    std::minstd_rand random(1);
    for (const std::string& text : texts) {
        for (size_t length = 0; length <= text.size(); ++length) {
            for (size_t start = 0; start <= length; ++start)
                ExtractEverything(ExactCopy(std::string_view(text).substr(start, length - start)).View());
        }
        for (int round = 0; round < 2000; ++round) {
            std::string spoilt = text;
            for (int change = 0; change < 3; ++change)
                spoilt[random() % spoilt.size()] = "#&,.;=?[]-09x\0\xFF "[random() % 16];
            ExtractEverything(ExactCopy(spoilt).View());
        }
    }
}

}  // namespace
