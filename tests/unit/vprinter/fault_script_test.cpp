#include "vprinter/faults/fault_script.h"

#include <array>

#include "opl/readable_text.h"
#include "refusal.h"
#include "sections.h"
#include "vprinter/faults/faulty_reply.h"

namespace vprinter {
namespace {

using namespace std::literals;

constexpr const char* kFaults = UNIT_TESTS "/vprinter/faults.txt";

std::vector<FaultRule> Rules(const std::string& text) {
    return ParseFaults(text, "faults.json");
}

std::string ReplyUnder(const std::string& action, std::string_view good) {
    FaultScript script(Rules(R"([{"match": "*", )" + action + "}]"), 0);
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
    ForEachCase(kFaults, "Refused", [](std::string script, const std::string& complaint) {
        std::ranges::replace(script, '|', '\n');
        ExpectComplaint(complaint, [&] { return Rules(script); });
    });
}

TEST(VprinterFaultScript, Each_action_makes_its_reply) {
    ForEachCase(kFaults, "Replies", [](const std::string& action, const std::string& reply) {
        EXPECT_EQ(ReplyUnder(action, "0000,Key=value;"), opl::FromReadable(reply).value());
    });
    const std::string_view list = "0101,A[0]#3=&;=&A[1]=two&A[2]=three;";
    EXPECT_EQ(ReplyUnder(R"("items": 2)", list), "0101,A[0]#3=&;=&A[1]=two;") << "a block holds anything";
    EXPECT_EQ(ReplyUnder(R"("value": "1")", list), "0101,A[0]#1=1&A[1]=two&A[2]=three;");
    EXPECT_EQ(ReplyUnder(R"("value": "x")", "0000,A#99=b;"), "0000,A#1=x") << "a length that is not true";
    EXPECT_EQ(ReplyUnder(R"("highBit": true)", ""), "");
}

TEST(VprinterFaultScript, The_first_rule_that_matches_and_is_in_force_decides) {
    const std::vector<FaultRule> all = Rules(R"([
        {"match": "DeviceSettings.Fax.Redials?", "skip": 1, "times": 2, "reply": "a"},
        {"match": "DeviceSettings.*", "printer": "USB001", "times": 1, "reply": "b"},
        {"match": "Name=\\;x;", "reply": "c"}])");
    FaultScript first(FaultsFor("USB001", all), 0);
    FaultScript second(FaultsFor("USB002", all), 0);
    const std::string_view redials = "DeviceSettings.Fax.Redials?";
    EXPECT_EQ(Met(first, {redials, redials, redials, redials}), "baa.....") << "the first lets one pass";
    EXPECT_EQ(Met(second, {redials, redials, "DeviceSettings.Fax.Redials=1;", "Name=\x1Dx;"}), ".a.c....")
        << "counts of its own";
}

TEST(VprinterFaultScript, Requests_are_chosen_by_pattern_time_and_chance) {
    ForEachCase(kFaults, "Requests", [](const std::string& rule, const std::string& met) {
        const bool lasts = rule.find("busy") != std::string::npos;
        FaultScript script(Rules("[{" + rule + (lasts ? "}]" : R"(, "lost": true}])")), 0);
        EXPECT_EQ(
            Met(script, {"A.One?", "A.Two?", "A.One=1;", "B.One?", "A.One?", "A.One?", "ZRPing?", "A.One?"}),
            met);
    });
}

TEST(VprinterFaultScript, Chance_is_the_same_for_the_same_seed_and_about_as_often_as_it_says) {
    const auto drawn = [](const std::string& seed) {
        FaultScript script(Rules(R"([{"match": "*", "chance": 25, "jitter": 9, "seed": )" + seed + "}]"), 0);
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
        return Rules(R"([{"match": "x", "reply": ")" + letter + '"' + more + "}]");
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
