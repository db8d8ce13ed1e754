#include "kestrel/testing/test_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <utility>

#include "refusal.h"
#include "kestrel/testing/pattern.h"

namespace cli {
namespace {

std::string ComplaintAbout(const std::string& text) {
    const std::string path =
        (std::filesystem::path(std::getenv("KESTREL_TEST_FOLDER")) / "test.json").string();
    std::ofstream(path, std::ios::binary) << text;
    const std::optional<Failure> failure = FailureOf([&] {
        return ReadTestFile(path, {{"given", "1"}}, "");
    });
    if (!failure) return "no complaint";
    EXPECT_EQ(ExitCode::Usage, failure->exit);
    return failure->text.substr(failure->text.find("test.json"));
}

TEST(CliTestFile, A_fault_is_told_with_its_place_and_what_was_expected) {
    const std::pair<const char*, const char*> rows[] = {
        {"{\n\"cases\": [}", "test.json:2: this is not JSON"},
        {"[]", "test.json:1: expected an object"},
        {R"({"cases": []})", "test.json:1: \"cases\": expected a list"},
        {R"({"case": []})",
         "there is no field \"case\" here; the fields are about, variables, control, cases"},
        {"{\"cases\": [{\"raw\": \"[{\"},\n\n{\"name\": \"x\", \"get\": \"fax.rings\", \"withinMs\": "
         "\"soon\"}]}",
         "test.json:3: case 2 \"x\": \"withinMs\": expected a whole number from 1 to 3600000, found "
         "\"soon\""},
        {R"({"cases": [{"name": "n", "steps": [{"get": "fax.rings"}, {"get": "fax.ring"}]}]})",
         "case 1 \"n\", step 2: "},
        {R"({"cases": [{"get": "fax.rings", "set": "fax.rings", "to": 1}]})",
         "\"get\" and \"set\" are two steps"},
        {R"({"cases": [{"name": "n"}]})", "expected one of raw, get, set and status"},
        {R"({"cases": [{"set": "fax.rings"}]})", "\"set\" and \"to\" belong together"},
        {R"({"cases": [{"set": "network.reset", "to": 1}]})", "network.reset"},
        {R"({"cases": [{"get": "fax.rings", "reply": "x"}]})", "\"reply\" is for a \"raw\" request"},
        {R"({"cases": [{"get": "fax.rings", "value": 1, "error": 5}]})", "to fail has no \"value\""},
        {R"({"cases": [{"raw": "x", "error": "ERROR_BUSI"}]})", "\"error\": expected a number such as 170"},
        {R"({"cases": [{"raw": "x", "pattern": "("}]})",
         "\"pattern\": expected an ECMAScript regular expression"},
        {R"({"cases": [{"raw": "x", "faults": [{"match": "*", "lost": true}]}]})", "control file"},
        {R"({"cases": [{"raw": "${later}", "capture": "later"}]})",
         "there is no variable ${later}; known here: given"},
        {R"({"cases": [{"raw": "${given"}]})", "without its }"},
        {R"({"control": "c", "cases": [{"raw": "x", "faults": [{"match": "${no}"}]}]})",
         "there is no variable ${no}"},
    };
    for (const auto& [text, complaint] : rows)
        EXPECT_NE(ComplaintAbout(text).find(complaint), std::string::npos) << ComplaintAbout(text);
    EXPECT_EQ(ComplaintAbout(
                  R"({"variables": {"a": 1}, "cases": [{"raw": "x", "capture": "b", "error": "0xE0000003"},
        {"get": "${a}", "value": "${b}${given}$${c}", "pattern": "(${b}"}]})"),
              "no complaint");
}

TEST(CliTestFile, A_pattern_is_held_against_long_answers_without_much_stack) {
    const std::string text(kLongestForPattern, 'x');
    EXPECT_TRUE(PatternFits("^(a|x|b)*$", text));
    EXPECT_FALSE(PatternFits("^x*y", text));
    EXPECT_NE("", ProblemWithPattern("(a)\\1"));
}

TEST(CliTestFile, Variables_are_replaced_once) {
    const Variables variables = {{"a", "1"}, {"b", "${a}"}};
    EXPECT_EQ("1 ${a} ${a} $ {", Substituted("${a} ${b} $${a} $ {", variables));
}

}  // namespace
}  // namespace cli
