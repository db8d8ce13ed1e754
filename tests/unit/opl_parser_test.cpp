#include "opl/opl_parser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
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

template <typename Out>
struct Read {
    std::string message;
    std::optional<Out> value;
};

/// What the messages hold; where that is nothing, the value from before is cleared. The beginnings of the
/// messages are read too, for the sanitizer.
template <typename Out>
void ExpectRead(bool (*get)(std::string_view, Out&), Out before, std::initializer_list<Read<Out>> rows) {
    for (const Read<Out>& row : rows) {
        SCOPED_TRACE(row.message);
        const ExactCopy message(row.message);
        Out value = before;
        EXPECT_EQ(get(message.View(), value), row.value.has_value());
        EXPECT_EQ(value, row.value.value_or(Out{}));
        for (size_t length = 0; length < row.message.size(); ++length)
            get(ExactCopy(message.View().substr(0, length)).View(), value);
    }
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
        SCOPED_TRACE(row.input);
        const ExactCopy input(row.input);
        OPLParser parser;
        for (const std::string& message : row.messages)
            EXPECT_EQ(Feed(parser, input.View()).message, message);
        EXPECT_EQ(Feed(parser, input.View()).result, ParseResult::MoreInput);
    }
}

TEST(Framer, Finds_the_same_message_wherever_the_input_is_cut) {
    for (const std::string& text : {"0000,DeviceSettings.Fax.Redials=3;"s, "3400,DeviceSettings.Foo=1?;"s,
                                    "101,L[0].MacAddr#6=&;?=#,&L[1].SSID=name;"s, kBlockReply}) {
        for (size_t cut = 1; cut < text.size(); ++cut) {
            OPLParser parser;
            const ExactCopy head(text.substr(0, cut)), tail(text.substr(cut));
            EXPECT_EQ(Feed(parser, head.View()).result, ParseResult::MoreInput) << text << " at " << cut;
            EXPECT_EQ(Feed(parser, tail.View()).message, text) << "at " << cut;
        }
    }
}

TEST(Framer, Refuses_malformed_streams_for_good) {
    for (const std::string& stream : {"0000,Ke\ny=1;"s, "\x7F;"s, "K\xE9y=1;"s, "\x1F=1;"s, "K\0=1;"s,
                                      "A=1&\tB=2;"s, "K#0000000000000002=ab;"s}) {
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

TEST(Extraction, Reads_response_numbers_and_indices) {
    ExpectRead<uint32_t>(OPLParser::GetResponseNumber, 77,
                         {{"0000,K=1;", 0},
                          {"101,", 101},
                          {",K=1;", 0},
                          {"4294967295,K;", 0xFFFFFFFFu},
                          {"99999999999999999999,K;", 0xFFFFFFFFu}});
    for (const char* none : {"", "101", "K=1;", "12 ,K;", "-1,K;", "1K,2;", ";"})
        ExpectRead<uint32_t>(OPLParser::GetResponseNumber, 77, {{none, {}}});

    ExpectRead<uint32_t>(OPLParser::GetIndex, 77,
                         {{"101,List[3].SSID=x;", 3},
                          {"List[12x].SSID=x;", 12},
                          {"L[1][2]=x;", 1},
                          {"L[99999999999]=x;", 0xFFFFFFFFu}});
    for (const char* none : {"List=x[3];", "List[]=x;", "List[-1]=x;", "List[", "List[;", ""})
        ExpectRead<uint32_t>(OPLParser::GetIndex, 77, {{none, {}}});
}

TEST(Extraction, Reads_keys) {
    ExpectRead<std::string_view>(OPLParser::GetKey, "before",
                                 {{"0000,DeviceSettings.Fax.Redials=3;", "DeviceSettings.Fax.Redials"},
                                  {"Key#4=abcd;", "Key"},
                                  {"0000,  a b  =3;", "a b"},
                                  {"12Key?", "12Key"},
                                  {"12=1;", "12"},
                                  {"1,2,3=1;", "2,3"},
                                  {"0000,=1;", ""},
                                  {"0000,   ;", ""},
                                  {"Key", {}},
                                  {"", {}}});
}

TEST(Extraction, Reads_text_values_unescaped) {
    ExpectRead<std::string>(OPLParser::GetValue, "before",
                            {{"0,K=a\x1Dz;", "a;z"},
                             {"K=\x19\x1A\x1B\x1C\x1D\x1E\x1F&L=2;", "#&,.;=?"},
                             {"K=y=z?", "y\x1Ez"},
                             {"K=;", ""},
                             {"K=\xE4 (null)\x01;", "\xE4 (null)\x01"}});
    for (const char* none : {"", "K;", "K?L=1;", "K&L=1;", "K=1"})
        ExpectRead<std::string>(OPLParser::GetValue, "before", {{none, {}}});
}

TEST(Extraction, Reads_numbers) {
    constexpr std::pair<const char*, int32_t> kNumbers[] = {
        {"3", 3},
        {"-12", -12},
        {"007", 7},
        {"", 0},
        {"-", 0},
        {"0x1F", 31},
        {"0X1f", 31},
        {"0xFFFFFFFE", -2},
        {"2147483647", INT32_MAX},
        {"-2147483648", INT32_MIN},
        {"99999999999", INT32_MAX},
        {"-99999999999", INT32_MIN},
        {"0x100000000", -1},
    };
    for (const auto& [text, number] : kNumbers)
        ExpectRead<int32_t>(OPLParser::GetIntValue, 77, {{"0000,K="s + text + ";", number}});
    for (const char* none :
         {"+5", " 5", "5 ", "--5", "5-", "0x", "0x-1", "0xG", "0x1G", "x1", "-0x1", "1\x1C", "99999999999z"})
        ExpectRead<int32_t>(OPLParser::GetIntValue, 77, {{"0000,K="s + none + ";", {}}});
    ExpectRead<int32_t>(OPLParser::GetIntValue, 77, {{"K;", {}}, {"K=5", {}}});
}

TEST(Extraction, Reads_the_eight_boolean_words) {
    const auto expect = [](const std::string& word, std::optional<uint8_t> value) {
        ExpectRead<uint8_t>(OPLParser::GetBoolValue, 77, {{"0000,K=" + word + ";", value}});
    };
    for (const char* yes : {"TRUE", "YES", "yes", "yEs", "ON", "ENABLE"})
        expect(yes, 1);
    for (const char* no : {"FALSE", "NO", "no", "No", "OFF", "DISABLE"})
        expect(no, 0);
    for (const char* none : {"true", "on", "On", "Off", "enable", "disable", "YE", "YESS", "1", "Y", ""})
        expect(none, {});
}

TEST(Extraction, Reads_binary_blocks_and_distrusts_their_counts) {
    using Bytes = std::vector<uint8_t>;
    ExpectRead<Bytes>(OPLParser::GetBinaryValue, {1, 2, 3},
                      {{kBlockReply, Bytes{';', 0, '&', '='}},
                       {"K#0=;", Bytes{}},
                       {"K#4=abcd", Bytes{'a', 'b', 'c', 'd'}},
                       {"K#2=abcd;", Bytes{'a', 'b'}},
                       {"K#x=ab;", Bytes{}},
                       {"K#;=ab;", Bytes{}}});
    for (const char* none : {"K#5=abcd", "K#4294967295=ab;", "K#4294967296=ab;", "K#99999999999999999999=ab;",
                             "K#-1=ab;", "K#=ab;", "K#4;abcd=", "K;L#1=a;", "K#", "K#4", ""})
        ExpectRead<Bytes>(OPLParser::GetBinaryValue, {1, 2, 3}, {{none, {}}});
}

TEST(Extraction, Splits_lists_into_messages) {
    ExpectRead<Messages>(OPLParser::SplitList, {"left from an earlier list", "and another"},
                         {{"0000,A=1&&B=2;", Messages{"A=1;", "B=2;"}},
                          {"101,A[0].M#3=&;?&&A[1].S=x;", Messages{"A[0].M#3=&;?;", "A[1].S=x;"}},
                          {"101,A=1&B#1=&;", Messages{"A=1;", "B#1=&;"}},
                          {"101,A=1", Messages{"A=1;"}},
                          {"101,B#2=ab", Messages{"B#2=ab;"}},
                          {"101,B#9=ab&C=1;", Messages{"B#9=ab;", "C=1;"}},
                          {"101,A=1&", Messages{"A=1;"}}});
    for (const char* none : {"A=1&B=2;", "A;1,B=2;", "101,;", "101,&A=1;", "101,", ""})
        ExpectRead<Messages>(OPLParser::SplitList, {"left", "over"}, {{none, {}}});
}

}  // namespace
