#include "vprinter/faults/fault_script.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "shared/user_error.h"

namespace vprinter {
namespace {

using namespace std::literals;

constexpr std::string_view kGoodReply = "0000,Key=value;";

std::string ComplaintAbout(std::string_view text) {
    try {
        static_cast<void>(FaultScript::Parse(text, "faults.json"));
    } catch (const tools::UserError& error) {
        return error.what();
    }
    return "no complaint";
}

std::string ReplyUnder(const std::string& action) {
    FaultScript script = FaultScript::Parse(R"([{"match": "*", )" + action + "}]", "faults.json");
    const Fault* const fault = script.Next("Key?");
    std::string scratch;
    return fault == nullptr ? "no fault" : std::string(FaultyReply(*fault, kGoodReply, scratch));
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
    };
    for (const auto& [action, reply] : cases)
        EXPECT_EQ(ReplyUnder(action), reply) << action;
}

TEST(VprinterFaultScript, The_first_rule_that_matches_and_is_in_force_decides) {
    FaultScript all = FaultScript::Parse(R"([
        {"match": "DeviceSettings.Fax.Redials?", "skip": 1, "times": 2, "delay": 1},
        {"match": "DeviceSettings.*", "printer": "USB001", "times": 1, "delay": 2},
        {"match": "Name=\\;x;", "delay": 3}])",
                                         "faults.json");
    FaultScript first = all.For("USB001");
    FaultScript second = all.For("USB002");

    const auto delay = [](FaultScript& script, std::string_view request) {
        const Fault* const fault = script.Next(request);
        return fault == nullptr ? 0 : fault->delayMs;
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

}  // namespace
}  // namespace vprinter
