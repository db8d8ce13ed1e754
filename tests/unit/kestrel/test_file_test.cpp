#include "kestrel/testing/test_file.h"

#include <cstdlib>

#include "kestrel/testing/pattern.h"
#include "refusal.h"
#include "sections.h"

namespace cli {
namespace {

constexpr const char* kTestFiles = UNIT_TESTS "/kestrel/test_files.txt";

std::optional<Failure> RefusalOf(std::string text) {
    std::ranges::replace(text, '|', '\n');
    const std::string path = std::string(std::getenv("KESTREL_TEST_FOLDER")) + "/test.json";
    std::ofstream(path, std::ios::binary) << text;
    return FailureOf([&] { return ReadTestFile(path, {{"given", "1"}}, ""); });
}

TEST(CliTestFile, A_fault_is_told_with_its_place_and_what_was_expected) {
    ForEachCase(kTestFiles, "Refused", [](const std::string& text, const std::string& complaint) {
        const std::optional<Failure> refusal = RefusalOf(text);
        ASSERT_TRUE(refusal);
        EXPECT_EQ(ExitCode::Usage, refusal->exit);
        EXPECT_PRED_FORMAT2(testing::IsSubstring, complaint, refusal->text);
    });
    for (const std::string& text : CasesOf(kTestFiles, "Taken"))
        EXPECT_FALSE(RefusalOf(text)) << RefusalOf(text)->text;
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
