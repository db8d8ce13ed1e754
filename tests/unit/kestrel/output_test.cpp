// Texts on their way in and out of the command line, failures, and the product configuration that is written.
#include <gtest/gtest.h>
#include <kestrel/sdk_text.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kestrel/failure.h"
#include "kestrel/installation/product_configuration.h"
#include "kestrel/output/output.h"
#include "kestrel/text/durations.h"
#include "kestrel/text/text.h"

namespace {

using cli::ExitCode;
using cli::Failure;

TEST(KestrelText, Keeps_every_character_between_utf8_and_utf16) {
    const std::string text = "a \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x96\xA8";
    const std::optional<cli::WideText> wide = cli::WideFromUtf8(text);
    ASSERT_TRUE(wide);
    EXPECT_EQ(wide->size(), 8u);
    EXPECT_EQ(cli::Utf8FromWide(*wide), text);
    EXPECT_EQ(cli::Utf8FromWide(wide->substr(0, 7)), "a \xC3\xA9 \xE2\x82\xAC \xEF\xBF\xBD");
}

TEST(KestrelText, Shows_bytes_in_a_notation_that_reads_back) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    const std::string shown = cli::ReadableBytes(bytes);
    EXPECT_TRUE(std::all_of(shown.begin(), shown.end(), [](char c) { return c >= 0x20 && c <= 0x7E; }));
    EXPECT_EQ(cli::BytesFromReadable(shown), bytes);
    for (const char* wrong : {"\\", "a\\", "\\n", "\\x", "\\x4", "\\xG0"})
        EXPECT_FALSE(cli::BytesFromReadable(wrong)) << wrong;
}

TEST(KestrelText, Lets_no_control_character_reach_the_terminal) {
    EXPECT_EQ(cli::ForTerminal("\x1B[2J\xC3\xA9\xC2\x9B\x7F\xFF"), "\\x1B[2J\xC3\xA9\\x9B\\x7F\\xFF");
}

TEST(KestrelDurations, Need_a_unit_and_stay_below_the_value_that_means_no_limit) {
    for (const auto& [written, milliseconds] :
         {std::pair("5s", 5000u), {"500ms", 500}, {"2m", 120000}, {"0ms", 0}, {"4294967294ms", 4294967294}})
        EXPECT_EQ(cli::ParseDuration(written), milliseconds) << written;
    for (const char* wrong : {"5", "", "s", "-1s", "1.5s", "5 s", "5h", "4294967295ms", "71583m", "5sec"})
        EXPECT_FALSE(cli::ParseDuration(wrong)) << wrong;
}

TEST(KestrelFailures, Give_each_code_one_exit_code_and_an_advice) {
    using enum ExitCode;
    const std::map<ExitCode, std::vector<std::uint32_t>> codesOfExit = {
        {OwnFault, {0xE0000001, 126, 1722, 123456}},
        {NoAnswer, {0xE0000002, 0xE0000003, 1460, 4319}},
        {BadReply, {0xE0000011, 0xE0000012}},
        {NoPrinter, {0xE0000013, 0xE0000014, 0xE0000015, 1801}},
        {DeviceRefused, {2, 22, 23, 31, 50, 1392}},
        {ValueRefused, {87, 1797, 1802}},
        {Locked, {170, 212}},
    };
    for (const auto& [exit, codes] : codesOfExit)
        for (const std::uint32_t code : codes) {
            const Failure failure = cli::FailureFromCode(code, "cannot do it", cli::Exchange::Write);
            EXPECT_EQ(failure.exit, exit) << code;
            EXPECT_FALSE(failure.advice.empty()) << code;
        }
    // The device's word is unknown, not the caller's.
    EXPECT_EQ(cli::FailureFromCode(87, "cannot read it", cli::Exchange::Read).exit, BadReply);
}

TEST(Texts, Every_code_and_every_response_number_has_a_name_a_text_and_an_advice) {
    const auto said = [](const char* text) { return text != nullptr && *text != '\0'; };
#define CODE_OF(name, code, text, advice) code,
    for (const std::uint32_t code : {KESTREL_SDK_ERRORS(CODE_OF) KESTREL_CALLER_ERRORS(CODE_OF)}) {
        const KestrelErrorText* const error = KestrelFindError(code);
        ASSERT_NE(error, nullptr) << code;
        EXPECT_EQ(error->code, code) << "found by its code, so it stands there once";
        EXPECT_TRUE(said(error->name) && said(error->text) && said(error->advice)) << code;
    }
#undef CODE_OF
    EXPECT_EQ(KestrelFindError(123456), nullptr);

    std::set<std::string> names;
    for (std::uint32_t number = 0; number < 101000; ++number) {
        const KestrelResponseText* const response = KestrelFindResponse(number);
        ASSERT_TRUE(response->first <= number && number <= response->last) << number;
        EXPECT_TRUE(said(response->name) && said(response->text) && said(response->advice)) << number;
        names.insert(response->name);
        EXPECT_NE(KestrelFindError(response->error), nullptr) << number;
    }
#define NAME_OF(first, last, error, name, text, advice) name,
    EXPECT_EQ(names, (std::set<std::string>{KESTREL_SDK_RESPONSES(NAME_OF)})) << "a row that is never found";
#undef NAME_OF
    EXPECT_STREQ(KestrelFindResponse(0xFFFFFFFF)->name, "RESPONSE_FAILED");
}

TEST(KestrelFailures, Show_code_reply_and_advice_to_people_and_to_scripts) {
    cli::Report report;
    report.failure = cli::FailureFromCode(0xE0000003, "cannot read \xFF", cli::Exchange::Read);
    report.failure->badReply = "3400,no;";
    report.failure->responseNumber = 3400;

    const std::string people = cli::FailureText(*report.failure, cli::Paint(false));
    for (const char* part : {"cannot read", "[0xE0000003]", "reply: 3400,no;",
                             "response number: 3400, the printer does not know"})
        EXPECT_PRED_FORMAT2(testing::IsSubstring, part, people);

    const auto document = tools::Json::Parse(cli::JsonDocument("get", report));
    EXPECT_EQ(document.At("exitCode"), 4);
    EXPECT_EQ(document.At("error").At("code"), 0xE0000003);
    EXPECT_EQ(document.At("error").At("responseNumber"), 3400);
}

TEST(KestrelOutput, Aligns_columns_by_characters_not_bytes) {
    EXPECT_EQ(cli::AlignedTable({{"A", "B"}, {"\xC3\xA9\xC3\xA9", "x"}, {"long", ""}}, cli::Paint(false)),
              "A     B\n\xC3\xA9\xC3\xA9    x\nlong\n");
}

TEST(KestrelConfiguration, Repeats_driver_lines_and_leaves_no_placeholder) {
    const std::string text = cli::ConfigurationText("acme", {"One", "Two"});
    for (const char* part :
         {"[Printers]\r\nOne\r\nTwo\r\n\r\n[Network Printers]\r\nOne\r\nTwo\r\n",
          "Library=ACMESDK.DLL\r\nSignature=ACME\r\n", "Two=40,70,60,90,290,330,35,55\r\n"})
        EXPECT_PRED_FORMAT2(testing::IsSubstring, part, text);
    EXPECT_EQ(text.find('{'), std::string::npos);
}

TEST(KestrelConfiguration, Refuses_names_that_its_file_cannot_hold) {
    const std::string tooLong(260, 'x');
    for (const char* driver : {"", " x", "x ", "a=b", "[x]", ";x", "a\nb", "\xE3\x81\x82", tooLong.c_str()})
        EXPECT_THROW(static_cast<void>(cli::ConfigurationText("ACME", {driver})), Failure) << driver;
    for (const char* product : {"", "a/b", "..", "A B"})
        EXPECT_THROW(static_cast<void>(cli::ConfigurationText(product, {"One"})), Failure) << product;
}

}  // namespace
