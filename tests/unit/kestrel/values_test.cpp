// What a person writes for a value, and what is refused before it is sent.
#include "kestrel/settings/values.h"
#include "kestrel/settings/settings.h"
#include "kestrel/text/text.h"
#include "refusal.h"
#include "sections.h"

namespace {

using cli::ExitCode;

constexpr const char* kValues = UNIT_TESTS "/kestrel/values.txt";

TEST(KestrelValues, Are_accepted_in_every_spelling_and_printed_in_one_or_refused_with_the_allowed_ones) {
    ForEachCase(kValues, "Values", [](const std::string& given, const std::string& expected) {
        const size_t blank = given.find(' ');
        const catalogue::Row& row = cli::FindSetting(given.substr(0, blank));
        const std::string written = cli::BytesFromReadable(given.substr(blank + 1)).value();
        cli::Value value;
        if (const auto failure = FailureOf([&] { value = cli::ParseValue(row, written); })) {
            EXPECT_EQ(failure->exit, ExitCode::ValueRefused);
            EXPECT_EQ(failure->advice, expected);
        } else {
            EXPECT_EQ(cli::FormatValue(row, value), expected);
            EXPECT_EQ(cli::ParseValue(row, expected), value);
        }
    });
    EXPECT_EQ(cli::FormatValue(cli::FindSetting("fax.mode"), {99, {}}), "99") << "a number without a word";
}

TEST(KestrelSettings, Are_found_by_name_and_by_key_without_case) {
    EXPECT_EQ(&cli::FindSetting("Fax.Redials"), &cli::FindSetting("DeviceSettings.Fax.redials"));
    EXPECT_EQ(cli::FindSetting("fax.redials").setter, std::string("SetFaxRedials"));
    EXPECT_TRUE(FailureOf([] { return &cli::FindSetting(""); }));
}

TEST(KestrelSettings, Are_offered_when_a_name_is_nearly_right) {
    ForEachCase(kValues, "Names", [](const std::string& written, const std::string& offered) {
        const auto failure = FailureOf([&] { return &cli::FindSetting(written); });
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->exit, ExitCode::Usage);
        EXPECT_TRUE(failure->advice.starts_with(offered)) << failure->advice;
    });
}

TEST(KestrelSettings, Match_by_part_and_by_pattern) {
    EXPECT_EQ(cli::MatchingSettings("").size(), catalogue::Rows().size());
    EXPECT_EQ(cli::MatchingSettings("redials").size(), 1u);
    EXPECT_EQ(cli::MatchingSettings("wireless.security-key?").size(), 4u);
    EXPECT_EQ(cli::MatchingSettings("*.quality").size(), 2u);
    EXPECT_TRUE(cli::MatchingSettings("dials*").empty());
}

}  // namespace
