#include "vprinter/faults/fault_script.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "shared/user_error.h"
#include "vprinter/faults/faulty_reply.h"

namespace vprinter {
namespace {

using namespace std::literals;

constexpr std::string_view kGoodReply = "0000,Key=value;";

std::string ComplaintAbout(std::string_view text) {
    try {
        static_cast<void>(ParseFaults(text, "faults.json"));
    } catch (const tools::UserError& error) {
        return error.what();
    }
    return "no complaint";
}

std::string ReplyUnder(const std::string& action, std::string_view good = kGoodReply) {
    FaultScript script(ParseFaults(R"([{"match": "*", )" + action + "}]", "faults.json"), 0);
    const std::optional<Fault> fault = script.Next("Key?", 0);
    std::string scratch;
    return fault ? std::string(FaultyReply(*fault, good, "0000,Before=1;", scratch)) : "no fault";
}

/// One letter for each second from 0 on: the first letter of the fault's bytes, or a dot for none.
std::string Met(FaultScript& script, const std::array<std::string_view, 8>& requests) {
    std::string met;
    for (const std::string_view request : requests) {
        const std::optional<Fault> fault = script.Next(request, met.size() * 1000);
        met += !fault ? '.' : fault->bytes.empty() ? 'x' : fault->bytes.front();
    }
    return met;
}

TEST(VprinterFaultScript, A_bad_script_is_refused_with_line_and_field) {
    constexpr std::pair<std::string_view, std::string_view> kCases[] = {
        {"[\n{\"match\": }]", "faults.json:2: this is not JSON"},
        {"{}", "faults.json:1: expected a list"},
        {"[1e999]", "faults.json: a number is too large"},
        {"[\n\n {\"delay\": 1}]", "faults.json:3: rule 1, \"match\": expected a text, found nothing"},
        {"[{\"match\": \"[{\", \"delay\": 1},\n{\"match\": \"\"}]", "faults.json:2: rule 2, \"match\""},
        {R"([{"match": "*", "dealy": 1}])", R"("dealy": there is no such field; the fields are match,)"},
        {R"([{"match": "*", "delay": "soon"}])", "expected a whole number from 1 to 600000, found \"soon\""},
        {R"([{"match": "*", "delay": 600001}])", "found 600001"},
        {R"([{"match": "*", "times": 0, "noReply": true}])", "\"times\""},
        {R"([{"match": "*", "noReply": false}])", "\"noReply\": expected true"},
        {R"([{"match": "*", "reply": "\\q"}])", "\"reply\": expected only"},
        {R"([{"match": "*", "garbage": "hex:00 F"}])", "\"garbage\": expected two hexadecimal digits"},
        {R"([{"match": "*", "cut": 3, "noReply": true}])", "\"noReply\" and \"cut\" do not go together"},
        {R"([{"match": "*"}])", "rule 1: does nothing"},
        {R"([{"match": "a*\\q*", "lost": true}])", "\"match\": expected only"},
        {R"([{"match": "*", "from": 5, "until": 5, "lost": true}])", "\"until\": expected a time after"},
        {R"([{"match": "*", "chance": 101, "lost": true}])", "from 1 to 100, found 101"},
        {R"([{"match": "*", "busy": true}])", "\"busy\": expected a whole number"},
    };
    for (const auto& [script, complaint] : kCases)
        EXPECT_NE(ComplaintAbout(script).find(complaint), std::string::npos) << ComplaintAbout(script);
}

TEST(VprinterFaultScript, Each_action_makes_its_reply) {
    const std::pair<std::string, std::string> cases[] = {
        {R"("cut": 7)", "0000,Ke"},
        {R"("garbage": "\\x00 raw")", "\\x00 raw"},
        {R"("garbage": "hex:00 3B ff")", "\0;\xFF"s},
        {R"("reply": "0000,K#2=\\x00\\xFF;L=\\;x\\\\;")", "0000,K#2=\0\xFF;L=\x1Dx\\;"s},
        {R"("responseNumber": 99999999999)", "99999999999,Key=value;"},
        {R"("repeat": 2)", "0000,Key=value;0000,Key=value;"},
        {R"("pad": 18)", "0000,Key=valuexxx;"},
        {R"("previousReply": true)", "0000,Before=1;"},
        {R"("noTerminator": true)", "0000,Key=value"},
        {R"("noNumber": true)", "Key=value;"},
        {R"("wrongKey": "Other")", "0000,Other=value;"},
        {R"("value": "a\\;b")",
         "0000,Key=a\x1D"
         "b;"},
        {R"("highBit": true)", "0000,Key=\xF6\xE1\xEC\xF5\xE5;"},
        {R"("items": 3)", "0000,Key=value;"},
    };
    for (const auto& [action, reply] : cases)
        EXPECT_EQ(ReplyUnder(action), reply) << action;
    const std::string_view list = "0101,A[0]#3=&;=&A[1]=two&A[2]=three;";
    EXPECT_EQ(ReplyUnder(R"("items": 2)", list), "0101,A[0]#3=&;=&A[1]=two;") << "a block holds anything";
    EXPECT_EQ(ReplyUnder(R"("value": "1")", list), "0101,A[0]#1=1&A[1]=two&A[2]=three;");
    EXPECT_EQ(ReplyUnder(R"("value": "x")", "0000,A#99=b;"), "0000,A#1=x") << "a length that is not true";
    EXPECT_EQ(ReplyUnder(R"("highBit": true)", ""), "");
}

TEST(VprinterFaultScript, The_first_rule_that_matches_and_is_in_force_decides) {
    const std::vector<FaultRule> all = ParseFaults(R"([
        {"match": "DeviceSettings.Fax.Redials?", "skip": 1, "times": 2, "delay": 1},
        {"match": "DeviceSettings.*", "printer": "USB001", "times": 1, "delay": 2},
        {"match": "Name=\\;x;", "delay": 3}])",
                                                   "faults.json");
    FaultScript first(FaultsFor("USB001", all), 0);
    FaultScript second(FaultsFor("USB002", all), 0);

    const auto delay = [](FaultScript& script, std::string_view request) {
        const std::optional<Fault> fault = script.Next(request, 0);
        return fault ? fault->delayMs : 0;
    };
    const std::string_view redials = "DeviceSettings.Fax.Redials?";
    EXPECT_EQ(delay(first, redials), 2u);  // the first rule lets one pass
    EXPECT_EQ(delay(first, redials), 1u);
    EXPECT_EQ(delay(first, redials), 1u);
    EXPECT_EQ(delay(first, redials), 0u);   // both are used up
    EXPECT_EQ(delay(second, redials), 0u);  // counts of its own
    EXPECT_EQ(delay(second, redials), 1u);
    EXPECT_EQ(delay(second, "DeviceSettings.Fax.Redials=1;"), 0u);
    EXPECT_EQ(delay(second, "Name=\x1Dx;"), 3u);
}

TEST(VprinterFaultScript, Requests_are_chosen_by_pattern_time_and_chance) {
    const std::array<std::string_view, 8> requests = {"A.One?", "A.Two?", "A.One=1;", "B.One?",
                                                      "A.One?", "A.One?", "ZRPing?",  "A.One?"};
    const std::pair<std::string, std::string_view> cases[] = {
        {R"("match": "A.*?")", "xx..xx.x"},
        {R"("match": "*One*")", "x.xxxx.x"},
        {R"("match": "A*n*e?")", "x...xx.x"},
        {R"("match": "A.One*A.One?")", "........"},  // no piece is used twice
        {R"("match": "A.One\\x2A")", "........"},
        {R"("match": "*", "from": 2, "until": 5)", "..xxx..."},
        {R"("match": "*", "every": 3)", "x..x..x."},
        {R"("match": "*", "skip": 1, "every": 2, "times": 2)", ".x.x...."},
        {R"("match": "B*", "busy": 2500)", "...xxx.."},  // what begins meets all that follow for a while
    };
    for (const auto& [rule, met] : cases) {
        const bool lasts = rule.find("busy") != std::string::npos;
        const std::string text = "[{" + rule + (lasts ? "}]" : R"(, "lost": true}])");
        FaultScript script(ParseFaults(text, "faults.json"), 0);
        EXPECT_EQ(Met(script, requests), met) << rule;
    }
}

TEST(VprinterFaultScript, Chance_is_the_same_for_the_same_seed_and_about_as_often_as_it_says) {
    const auto drawn = [](const std::string& seed) {
        FaultScript script(
            ParseFaults(R"([{"match": "*", "chance": 25, "jitter": 9, "seed": )" + seed + "}]", "f"), 0);
        std::string delays;
        for (int i = 0; i < 1000; ++i) {
            const std::optional<Fault> fault = script.Next("x", 0);
            delays += fault ? std::to_string(fault->delayMs) : ".";
        }
        return delays;
    };
    const std::string first = drawn("7");
    EXPECT_EQ(first, drawn("7"));
    EXPECT_NE(first, drawn("8"));
    EXPECT_NEAR(std::ranges::count(first, '.'), 750, 50);
    for (const char digit : "0123456789"sv)
        EXPECT_NE(first.find(digit), std::string::npos) << digit;
}

TEST(VprinterFaultScript, Rules_come_and_go_by_name_and_by_where_they_came_from) {
    const auto rule = [](const std::string& letter, const std::string& more = "") {
        return ParseFaults(R"([{"match": "x", "reply": ")" + letter + '"' + more + "}]", "f");
    };
    FaultScript script(rule("s"), 0);
    const std::array<std::string_view, 8> requests = {"x", "x"};
    EXPECT_EQ(Met(script, requests), "ss......");
    script.Replace(FaultSource::Control, rule("c"), 0);
    script.Add(rule("h", R"(, "name": "slow", "times": 1)").front(), 0);
    EXPECT_EQ(Met(script, requests), "hc......") << "what comes later is asked first";
    script.Add(rule("i", R"(, "name": "slow", "from": 1)").front(), 0);
    EXPECT_EQ(script.Rules().size(), 3u) << "a rule takes the place of the one of its name";
    EXPECT_EQ(Met(script, requests), "ci......");
    EXPECT_TRUE(script.Remove("slow"));
    EXPECT_FALSE(script.Remove("slow"));
    script.Replace(FaultSource::Control, {}, 0);
    EXPECT_EQ(Met(script, requests), "ss......");
    script.Replace(FaultSource::Script, {}, 0);
    EXPECT_FALSE(script.HasRules());
}

}  // namespace
}  // namespace vprinter
