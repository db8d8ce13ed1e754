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

std::optional<std::string> Value(std::string_view message) {
    std::string value = "old";
    const bool found = OPLParser::GetValue(message, value);
    if (!found) {
        EXPECT_EQ(value, "");
    }
    return found ? std::optional(value) : std::nullopt;
}

std::optional<int32_t> Int(std::string_view message) {
    int32_t value = 77;
    const bool found = OPLParser::GetIntValue(message, value);
    if (!found) {
        EXPECT_EQ(value, 0);
    }
    return found ? std::optional(value) : std::nullopt;
}

std::optional<int> Bool(std::string_view message) {
    uint8_t value = 77;
    const bool found = OPLParser::GetBoolValue(message, value);
    if (!found) {
        EXPECT_EQ(value, 0);
    }
    return found ? std::optional<int>(value) : std::nullopt;
}

std::optional<std::string> Binary(std::string_view message) {
    std::vector<uint8_t> bytes{1, 2, 3};
    const bool found = OPLParser::GetBinaryValue(message, bytes);
    if (!found) {
        EXPECT_TRUE(bytes.empty());
    }
    return found ? std::optional(std::string(bytes.begin(), bytes.end())) : std::nullopt;
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
        {"Key", std::nullopt},
        {"", std::nullopt},
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
        std::optional<int32_t> number;
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
        {"+5", std::nullopt},
        {" 5", std::nullopt},
        {"5 ", std::nullopt},
        {"--5", std::nullopt},
        {"5-", std::nullopt},
        {"0x", std::nullopt},
        {"0x-1", std::nullopt},
        {"0xG", std::nullopt},
        {"0x1G", std::nullopt},
        {"x1", std::nullopt},
        {"-0x1", std::nullopt},
        {"1\x1C"
         "5",
         std::nullopt},
        {"99999999999z", std::nullopt},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Int("0000,K=" + std::string(row.value) + ";"), row.number) << row.value;
    EXPECT_EQ(Int("K;"), std::nullopt);
    EXPECT_EQ(Int("K=5"), std::nullopt);
}

TEST(Extraction, Reads_the_eight_boolean_words) {
    const struct {
        std::string_view words;
        std::optional<int> value;
    } cases[] = {
        {"TRUE YES yes yEs ON ENABLE", 1},
        {"FALSE NO no No OFF DISABLE", 0},
        {"true on On Off enable disable YE YESS 1 0 Y", std::nullopt},
    };
    for (const auto& row : cases) {
        for (size_t start = 0; start < row.words.size();) {
            const size_t end = std::min(row.words.find(' ', start), row.words.size());
            const std::string message = "0000,K=" + std::string(row.words.substr(start, end - start)) + ";";
            EXPECT_EQ(Bool(message), row.value) << message;
            start = end + 1;
        }
    }
    EXPECT_EQ(Bool("K=;"), std::nullopt);
    EXPECT_EQ(Bool("K;"), std::nullopt);
}

TEST(Extraction, Reads_binary_blocks_and_distrusts_their_counts) {
    const struct {
        std::string message;
        std::optional<std::string> block;
    } cases[] = {
        {kBlockReply, ";\0&="s},
        {"K#0=;", ""},
        {"K#4=abcd", "abcd"},
        {"K#2=abcd;", "ab"},
        {"K#x=ab;", ""},
        {"K#5=abcd", std::nullopt},
        {"K#4294967295=ab;", std::nullopt},
        {"K#4294967296=ab;", std::nullopt},
        {"K#99999999999999999999=ab;", std::nullopt},
        {"K#-1=ab;", std::nullopt},
        {"K#=ab;", std::nullopt},
        {"K#;=ab;", ""},
        {"K#4;abcd=", std::nullopt},
        {"K;L#1=a;", std::nullopt},
        {"K#", std::nullopt},
        {"K#4", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Binary(ExactCopy(row.message).View()), row.block) << row.message;
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
        {"A=1&B=2;", {}},
        {"A;1,B=2;", {}},
        {"101,;", {}},
        {"101,&A=1;", {}},
        {"101,", {}},
        {"", {}},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Items(ExactCopy(row.message).View()), row.items) << row.message;
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
