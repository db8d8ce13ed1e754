#include "opl/opl_parser.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

using namespace opl;

namespace {

using namespace std::string_literals;

using Messages = std::vector<std::string>;

/// A copy that ends exactly with its last byte, so that a sanitizer sees every read beyond it.
struct ExactCopy {
    explicit ExactCopy(std::string_view text) : bytes(text.begin(), text.end()) {}
    [[nodiscard]] std::string_view View() const { return {bytes.data(), bytes.size()}; }

    const std::vector<char> bytes;
};

/// A message, or the result that there is none.
using Framed = std::variant<std::string, ParseResult>;

Framed Feed(OPLParser& parser, std::string_view input) {
    const char* message = "untouched";
    uint32_t length = 1;
    const ParseResult result =
        parser.ParseStream(input.data(), static_cast<uint32_t>(input.size()), message, length);
    if (result == ParseResult::MessageReady) return std::string(message, length);
    EXPECT_EQ(message, nullptr);
    EXPECT_EQ(length, 0u);
    return result;
}

constexpr auto kMoreInput = ParseResult::MoreInput;
constexpr auto kMalformed = ParseResult::Malformed;

template <typename Out>
struct Held {
    Out value;
    std::vector<std::string> messages;
};

/// What some messages hold and others do not; there the value from before is cleared. The beginnings of the
/// messages are read too, for the sanitizer.
template <typename Out>
void ExpectRead(bool (*get)(std::string_view, Out&), Out before, std::initializer_list<Held<Out>> held,
                const std::vector<std::string>& nothing) {
    const auto expect = [&](std::string_view message, bool found, const Out& expected) {
        const ExactCopy copy(message);
        Out value = before;
        EXPECT_EQ(get(copy.View(), value), found) << message;
        EXPECT_EQ(value, expected) << message;
        for (size_t length = 0; length < message.size(); ++length)
            get(ExactCopy(message.substr(0, length)).View(), value);
    };
    for (const Held<Out>& row : held)
        for (const std::string& message : row.messages)
            expect(message, true, row.value);
    for (const std::string& message : nothing)
        expect(message, false, {});
}

const std::string kBlockReply = "0000,Key#4=;\0&=;"s;

TEST(Framer, Cuts_a_buffer_into_its_messages) {
    const std::pair<std::string, Messages> cases[] = {
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
    for (const auto& [text, messages] : cases) {
        const ExactCopy input(text);
        OPLParser parser;
        for (const std::string& message : messages)
            EXPECT_EQ(Feed(parser, input.View()), Framed(message));
        EXPECT_EQ(Feed(parser, input.View()), Framed(kMoreInput)) << text;
    }
}

TEST(Framer, Finds_the_same_message_wherever_the_input_is_cut) {
    for (const std::string& text : {"0000,DeviceSettings.Fax.Redials=3;"s, "3400,DeviceSettings.Foo=1?;"s,
                                    "101,L[0].MacAddr#6=&;?=#,&L[1].SSID=name;"s, kBlockReply}) {
        for (size_t cut = 1; cut < text.size(); ++cut) {
            OPLParser parser;
            const ExactCopy head(text.substr(0, cut)), tail(text.substr(cut));
            EXPECT_EQ(Feed(parser, head.View()), Framed(kMoreInput)) << text << " at " << cut;
            EXPECT_EQ(Feed(parser, tail.View()), Framed(text)) << "at " << cut;
        }
    }
}

TEST(Framer, Refuses_malformed_streams_for_good) {
    for (const std::string& stream : {"0000,Ke\ny=1;"s, "\x7F;"s, "K\xE9y=1;"s, "\x1F=1;"s, "K\0=1;"s,
                                      "A=1&\tB=2;"s, "K#0000000000000002=ab;"s}) {
        OPLParser parser;
        EXPECT_EQ(Feed(parser, stream), Framed(kMalformed)) << stream;
        EXPECT_EQ(Feed(parser, "A=1;"), Framed(kMalformed)) << stream;
    }
}

TEST(Framer, Takes_the_longest_message_and_not_a_byte_more) {
    const std::string head = "0000,K=";
    for (const bool fits : {true, false}) {
        const std::string value(OPLParser::kMaxMessage - head.size() - (fits ? 1 : 0), 'v');
        const std::string message = head + value + ';';
        OPLParser whole;
        EXPECT_EQ(Feed(whole, message), fits ? Framed(message) : Framed(kMalformed));
        OPLParser halves;
        EXPECT_EQ(Feed(halves, head + value), Framed(kMoreInput));
        EXPECT_EQ(Feed(halves, ";"), fits ? Framed(message) : Framed(kMalformed));
    }
    const std::string filler(40'000, '\0');
    OPLParser block;
    EXPECT_EQ(Feed(block, "K#999999999999999=" + filler), Framed(kMoreInput));
    EXPECT_EQ(Feed(block, filler + filler), Framed(kMalformed));
    OPLParser length;
    EXPECT_EQ(Feed(length, "K#" + std::string(OPLParser::kMaxMessage, '0') + "1=a;"), Framed(kMalformed));
}

TEST(Extraction, Reads_response_numbers_and_indices) {
    ExpectRead<uint32_t>(OPLParser::GetResponseNumber, 77,
                         {{0, {"0000,K=1;", ",K=1;"}},
                          {101, {"101,"}},
                          {0xFFFFFFFFu, {"4294967295,K;", "99999999999999999999,K;"}}},
                         {"", "101", "K=1;", "12 ,K;", "-1,K;", "1K,2;", ";"});
    ExpectRead<uint32_t>(OPLParser::GetIndex, 77,
                         {{3, {"101,List[3].SSID=x;"}},
                          {12, {"List[12x].SSID=x;"}},
                          {1, {"L[1][2]=x;"}},
                          {0xFFFFFFFFu, {"L[99999999999]=x;"}}},
                         {"List=x[3];", "List[]=x;", "List[-1]=x;", "List[", "List[;", ""});
}

TEST(Extraction, Reads_keys) {
    ExpectRead<std::string_view>(OPLParser::GetKey, "before",
                                 {{"DeviceSettings.Fax.Redials", {"0000,DeviceSettings.Fax.Redials=3;"}},
                                  {"Key", {"Key#4=abcd;"}},
                                  {"a b", {"0000,  a b  =3;"}},
                                  {"12Key", {"12Key?"}},
                                  {"12", {"12=1;"}},
                                  {"2,3", {"1,2,3=1;"}},
                                  {"", {"0000,=1;", "0000,   ;"}}},
                                 {"Key", ""});
}

TEST(Extraction, Reads_text_values_unescaped) {
    ExpectRead<std::string>(OPLParser::GetValue, "before",
                            {{"a;z", {"0,K=a\x1Dz;"}},
                             {"#&,.;=?", {"K=\x19\x1A\x1B\x1C\x1D\x1E\x1F&L=2;"}},
                             {"y\x1Ez", {"K=y=z?"}},
                             {"", {"K=;"}},
                             {"\xE4 (null)\x01", {"K=\xE4 (null)\x01;"}}},
                            {"", "K;", "K?L=1;", "K&L=1;", "K=1"});
}

TEST(Extraction, Reads_numbers) {
    ExpectRead<int32_t>(OPLParser::GetIntValue, 77,
                        {{0, {"K=0;", "K=;", "K=-;"}},
                         {7, {"0000,K=7;", "K=007;"}},
                         {-12, {"K=-12;"}},
                         {31, {"K=0x1F;", "K=0X1f;"}},
                         {-2, {"K=0xFFFFFFFE;"}},
                         {-1, {"K=0x100000000;"}},
                         {INT32_MAX, {"K=2147483647;", "K=4294967295;", "K=99999999999;"}},
                         {INT32_MIN, {"K=-2147483648;", "K=-99999999999;"}}},
                        {"K=+5;", "K= 5;", "K=5 ;", "K=--5;", "K=5-;", "K=0x;", "K=0x-1;", "K=0xG;",
                         "K=0x1G;", "K=x1;", "K=-0x1;", "K=1\x1C;", "K=99999999999z;", "K;", "K=5"});
}

TEST(Extraction, Reads_the_eight_boolean_words) {
    ExpectRead<uint8_t>(OPLParser::GetBoolValue, 77,
                        {{1, {"0,K=TRUE;", "K=YES;", "K=yes;", "K=yEs;", "K=ON;", "K=ENABLE;"}},
                         {0, {"0,K=FALSE;", "K=NO;", "K=no;", "K=No;", "K=OFF;", "K=DISABLE;"}}},
                        {"K=true;", "K=on;", "K=On;", "K=Off;", "K=enable;", "K=disable;", "K=YE;", "K=YESS;",
                         "K=1;", "K=Y;", "K=;", "K;"});
}

TEST(Extraction, Reads_binary_blocks_and_distrusts_their_counts) {
    ExpectRead<std::vector<uint8_t>>(
        OPLParser::GetBinaryValue, {1, 2, 3},
        {{{';', 0, '&', '='}, {kBlockReply}},
         {{}, {"K#0=;", "K#x=ab;", "K#;=ab;"}},
         {{'a', 'b', 'c'}, {"K#3=abcd;", "K#3=abc"}}},
        {"K#5=abcd", "K#4294967295=ab;", "K#4294967296=ab;", "K#99999999999999999999=ab;", "K#-1=ab;",
         "K#=ab;", "K#4;abcd=", "K;L#1=a;", "K#", "K#4", ""});
}

TEST(Extraction, Splits_lists_into_messages) {
    ExpectRead<Messages>(OPLParser::SplitList, {"left from an earlier list", "and another"},
                         {{{"A=1;", "B=2;"}, {"0000,A=1&&B=2;"}},
                          {{"A[0].M#3=&;?;", "A[1].S=x;"}, {"101,A[0].M#3=&;?&&A[1].S=x;"}},
                          {{"A=1;", "B#1=&;"}, {"101,A=1&B#1=&;"}},
                          {{"A=1;"}, {"101,A=1", "101,A=1&"}},
                          {{"B#2=ab;"}, {"101,B#2=ab"}},
                          {{"B#9=ab;", "C=1;"}, {"101,B#9=ab&C=1;"}}},
                         {"A=1&B=2;", "A;1,B=2;", "101,;", "101,&A=1;", "101,", ""});
}

}  // namespace
