// What a person writes for a value, and what is refused before it is sent.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "cli_refusal.h"
#include "kestrel/settings/settings.h"
#include "kestrel/settings/values.h"

namespace {

using cli::ExitCode;

TEST(KestrelValues, Are_accepted_in_every_spelling_and_printed_in_one) {
    constexpr std::array<const char*, 3> kCases[] = {
        {"fax.backup", "ON", "yes"},
        {"fax.backup", "0", "no"},
        {"fax.redials", "255", "255"},
        {"fax.redials", "+7", "7"},
        {"copy.brightness", "-128", "-128"},
        {"copy.quantity", "127", "127"},  // read as u8, written as s8
        {"fax.mode", "fine_color", "Fine_Color"},
        {"photo.layout", "2x2poster", "2x2Poster"},  // a word that begins like a number
        {"photo.layout", "1", "1_bordered"},
        {"device.language", "12", "CastilianSpanish"},
        {"ip.static.address", "255.255.255.255", "255.255.255.255"},
        {"wireless.ssid", "12345678901234567890123456789012", "12345678901234567890123456789012"},
        {"device.name", "B\xC3\xBCro \xE2\x82\xAC", "B\xC3\xBCro \xE2\x82\xAC"},
    };
    for (const auto& [setting, written, printed] : kCases) {
        SCOPED_TRACE(std::string(setting) + " " + written);
        const catalogue::Row& row = cli::FindSetting(setting);
        const cli::Value value = cli::ParseValue(row, written);
        EXPECT_EQ(cli::FormatValue(row, value), printed);
        EXPECT_EQ(cli::ParseValue(row, printed), value);
    }
}

TEST(KestrelValues, Are_refused_with_the_allowed_ones_when_the_type_cannot_hold_them) {
    const struct {
        const char* setting;
        const char* allowed;
        std::vector<const char*> refused;
    } cases[] = {
        {"fax.backup", "yes no", {"maybe", "2"}},
        {"fax.redials", "0 to 255", {"256", "-1", "3x", "", "99999999999999999999"}},
        {"copy.quantity", "-128 to 127", {"128", "-129"}},
        {"copy.scale", "0 to 65535", {"65536"}},
        {"fax.dialing", "Tone Pulse", {"Morse", "2", ""}},
        {"ip.static.address", "a.b.c.d", {"192.168.0", "1.2.3.256", "1.2.3.4.5", "1.2.3.", "1.2.3.05", ""}},
        {"wireless.ssid", "at most 32 characters", {"123456789012345678901234567890123"}},
        // Control codes, one that would come back as '='; and what the code page has not.
        {"device.name", "at most 63 characters", {"tab\tstop", "\x1E", "\xE3\x81\x82"}},
        // No UTF-8: cut, a surrogate, an over-long form.
        {"device.name", "at most 63 characters", {"cut \xE3\x81", "\xED\xA0\x80", "\xC0\xAF"}},
    };
    for (const auto& row : cases) {
        for (const char* written : row.refused) {
            SCOPED_TRACE(std::string(row.setting) + " " + written);
            const auto failure =
                FailureOf([&] { return cli::ParseValue(cli::FindSetting(row.setting), written); });
            ASSERT_TRUE(failure);
            EXPECT_EQ(failure->exit, ExitCode::ValueRefused);
            EXPECT_EQ(failure->advice, std::string("allowed: ") + row.allowed);
        }
    }
}

TEST(KestrelValues, Are_numbers_and_booleans_in_json_and_words_where_the_table_has_one) {
    const auto json = [](const char* name, const char* written) {
        const catalogue::Row& row = cli::FindSetting(name);
        return cli::JsonValue(row, cli::ParseValue(row, written)).Dump();
    };
    EXPECT_EQ(json("fax.backup", "on"), "true");
    EXPECT_EQ(json("copy.brightness", "-2"), "-2");
    EXPECT_EQ(json("fax.mode", "0"), "\"Photo_Color\"");
    EXPECT_EQ(cli::FormatValue(cli::FindSetting("fax.mode"), {99, {}}), "99");
}

TEST(KestrelSettings, Are_found_by_name_and_by_key_without_case) {
    EXPECT_EQ(&cli::FindSetting("Fax.Redials"), &cli::FindSetting("DeviceSettings.Fax.redials"));
    EXPECT_EQ(cli::FindSetting("fax.redials").setter, std::string("SetFaxRedials"));
    EXPECT_TRUE(FailureOf([] { return cli::FindSetting(""); }));
}

TEST(KestrelSettings, Are_offered_when_a_name_is_nearly_right) {
    constexpr std::pair<const char*, const char*> kCases[] = {
        {"fax.redial", "did you mean fax.redials?"},
        {"redials", "did you mean fax.redials?"},
        {"wireless.sid", "did you mean wireless.ssid"},
        {"FAX.RINGSS", "did you mean fax.rings?"},
        {"nothing.at-all-like-it", "`kestrel list` prints all settings"},
    };
    for (const auto& [written, offered] : kCases) {
        const auto failure = FailureOf([&] { return cli::FindSetting(written); });
        ASSERT_TRUE(failure) << written;
        EXPECT_EQ(failure->exit, ExitCode::Usage);
        EXPECT_EQ(failure->advice.substr(0, std::string(offered).size()), offered) << written;
    }
}

TEST(KestrelSettings, Match_by_part_and_by_pattern) {
    EXPECT_EQ(cli::MatchingSettings("").size(), catalogue::Rows().size());
    EXPECT_EQ(cli::MatchingSettings("redials").size(), 1u);
    EXPECT_EQ(cli::MatchingSettings("wireless.security-key?").size(), 4u);
    EXPECT_EQ(cli::MatchingSettings("*.quality").size(), 2u);
    EXPECT_TRUE(cli::MatchingSettings("dials*").empty());
}

TEST(KestrelSettings, Know_which_of_them_are_secret) {
    std::size_t secrets = 0;
    for (const catalogue::Row& row : catalogue::Rows())
        secrets += row.IsSecret() ? 1 : 0;
    EXPECT_EQ(secrets, 5u);
    EXPECT_TRUE(cli::FindSetting("wireless.pass-phrase").IsSecret());
    EXPECT_FALSE(cli::FindSetting("wireless.security-type").IsSecret());
}

}  // namespace
