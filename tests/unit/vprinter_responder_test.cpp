#include "vprinter/responder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "opl/opl_parser.h"
#include "opl/vocabulary.h"
#include "vprinter/state_file.h"
#include "vprinter/user_error.h"

namespace vprinter {
namespace {

using namespace std::literals;

constexpr uint32_t kClient = 100;
constexpr uint32_t kOther = 200;
constexpr uint32_t kDead = 300;

class VprinterResponder : public ::testing::Test {
  protected:
    std::string Ask(std::string_view request, uint32_t client = kClient) {
        return std::string(responder_.Answer(request, client));
    }

    uint64_t tickMs_ = 1'000'000;
    int64_t localSeconds_ = 0;  // the beginning of 2000
    DeviceModel model_;
    Responder responder_{model_,
                         {[](uint32_t processId) { return processId != kDead; }, [this] { return tickMs_; },
                          [this] { return localSeconds_; }}};
};

TEST_F(VprinterResponder, Settings_are_read_set_and_judged_by_their_type) {
    const std::string ip = std::string(KeyText(OplKey::StaticIPAddress));
    const struct {
        std::string request;
        std::string reply;  // or its beginning
    } cases[] = {
        {"DeviceSettings.Fax.Redials?", "0000,DeviceSettings.Fax.Redials=3;"},
        {"DeviceSettings.Fax.Redials=10;", "0000,DeviceSettings.Fax.Redials=10;"},
        {"DeviceSettings.Fax.Redials=007;", "0000,DeviceSettings.Fax.Redials=7;"},
        {"DeviceSettings.Fax.Redials=11;",
         "3450,Expected a number from 0 to 10: DeviceSettings.Fax.Redials;"},
        {"DeviceSettings.Fax.Redials=-1;", "3450,"},
        {"DeviceSettings.Fax.Redials=;", "3450,"},
        {"DeviceSettings.Fax.Redials=3x;", "3450,"},
        {"DeviceSettings.Fax.Redials=99999999999;", "3450,"},
        {"DeviceSettings.Fax.Redials#1=3;", "3450,"},
        {"DeviceSettings.Fax.Redials?", "0000,DeviceSettings.Fax.Redials=7;"},
        {"DeviceSettings.Copy.Brightness=-2;", "0000,DeviceSettings.Copy.Brightness=-2;"},
        {"DeviceSettings.Copy.Preview=yEs;", "0000,DeviceSettings.Copy.Preview=YES;"},
        {"DeviceSettings.Copy.Preview=OFF;", "0000,DeviceSettings.Copy.Preview=NO;"},
        {"DeviceSettings.Copy.Preview=Off;", "3450,"},
        {"DeviceSettings.Photo.Quality=Draft;", "0000,DeviceSettings.Photo.Quality=Draft;"},
        {"DeviceSettings.Photo.Quality=draft;", "3450,Expected one of Draft Normal Presentation: "},
        {"DeviceSettings.System.Name=a\x1D"
         "b;",
         "0000,DeviceSettings.System.Name=a\x1D"
         "b;"},
        {"DeviceSettings.System.Name=" + std::string(63, 'n') + ";", "0000,"},
        {"DeviceSettings.System.Name=" + std::string(64, 'n') + ";", "3450,Expected at most 63 characters"},
        {ip + "#4=\x0A\x00\x00;;"s, "0000," + ip + "#4=\x0A\x00\x00;;"s},
        {ip + "#5=12345;", "3450,"},
        {ip + "=1.2.3.4;", "3450,"},
        {"DeviceSettings.System.Information.RPID=x;",
         "3400,Cannot be set: DeviceSettings.System.Information.RPID;"},
        {"DeviceSettings.System.RestoreDefaults?", "3400,Cannot be read: "},
        {"DeviceSettings.Fax.Redials=3?", "3400,"},
        {"DeviceSettings.Foo?", "3400,Unknown: DeviceSettings.Foo_;"},
        {"no end", "3400,"},
    };
    for (const auto& expected : cases) {
        EXPECT_TRUE(Ask(expected.request).starts_with(expected.reply))
            << expected.request << "\n  " << Ask(expected.request);
    }
}

TEST_F(VprinterResponder, A_compound_request_gets_one_reply_and_stops_at_the_first_refusal) {
    EXPECT_EQ(Ask("DeviceSettings.Fax.Redials=5;DeviceSettings.Fax.Rings?"),
              "0000,DeviceSettings.Fax.Redials=5&DeviceSettings.Fax.Rings=4;");
    EXPECT_TRUE(Ask("DeviceSettings.Fax.Redials=6;DeviceSettings.Fax.Rings=0;DeviceSettings.Fax.Redials=7;")
                    .starts_with("3450,"));
    EXPECT_EQ(Ask("DeviceSettings.Fax.Redials?"), "0000,DeviceSettings.Fax.Redials=6;");

    std::string endless;
    while (endless.size() < 65'000)
        endless += "ZRPing?DeviceSettings.Fax.Redials?";
    EXPECT_LE(Ask(endless).size(), 65'791u);
}

TEST_F(VprinterResponder, Special_words_have_their_response_numbers) {
    const struct {
        std::string_view request;
        std::string_view reply;
    } cases[] = {
        {"ZRPing?", "0000,ZRPing;"},
        {"ZRCancel?", "0000,ZRCancel;"},
        {"ZRTimeoutParam=4750;", "0000,ZRTimeoutParam=4750;"},
        {"ZRTimeoutParam=x;", "3450,Expected milliseconds: ZRTimeoutParam;"},
        {"ZRCache=TRUE;", "0101,ZRCache=TRUE;"},
        {"ZRCache=YES;", "3450,Expected TRUE or FALSE: ZRCache;"},
        {"ZRClearFWCaps?", "0101,ZRClearFWCaps;"},
        {"Maintenance=001?", "0096,Maintenance=001;"},
        {"Maintenance=007?", "0096,Maintenance=007;"},
        {"Maintenance=008?", "3400,Unknown: Maintenance_008_;"},
        {"Maintenance=001;", "3400,Unknown: Maintenance_001_;"},
        {"ZRNothing?", "3400,Unknown: ZRNothing_;"},
    };
    for (const auto& expected : cases)
        EXPECT_EQ(Ask(expected.request), expected.reply);
}

TEST_F(VprinterResponder, The_lock_belongs_to_one_living_client) {
    EXPECT_EQ(Ask("LockPrinter?"), "0002,LockPrinter;");
    EXPECT_EQ(Ask("LockPrinter?"), "0002,LockPrinter;");
    EXPECT_EQ(Ask("LockPrinter?", kOther), "1999,Locked by process: 100;");
    EXPECT_EQ(Ask("UnlockPrinter?", kOther), "1999,Locked by process: 100;");
    EXPECT_EQ(Ask("UnlockPrinter?"), "0003,UnlockPrinter;");
    EXPECT_EQ(Ask("LockPrinter?", kDead), "0002,LockPrinter;");
    EXPECT_EQ(Ask("LockPrinter?", kOther), "0002,LockPrinter;");
}

TEST_F(VprinterResponder, A_client_has_given_up_after_the_time_out_that_it_announced) {
    EXPECT_FALSE(responder_.HasGivenUp(kClient, 1'000'000));
    Ask("ZRTimeoutParam=950;");
    Ask("ZRTimeoutParam=-214748366;", kOther);
    EXPECT_FALSE(responder_.HasGivenUp(kClient, 1000));
    EXPECT_TRUE(responder_.HasGivenUp(kClient, 1001));
    EXPECT_FALSE(responder_.HasGivenUp(kOther, 1'000'000));
    for (uint32_t flood = 1000; flood < 1100; ++flood)
        Ask("ZRTimeoutParam=1;", flood);
    EXPECT_FALSE(responder_.HasGivenUp(kClient, 1001));  // forgotten, not mixed up
}

TEST_F(VprinterResponder, Restoring_defaults_goes_back_to_the_first_values) {
    ASSERT_EQ(model_.SetInitial(KeyText(OplKey::FriendlyName), "mine"), "");
    Ask("DeviceSettings.System.Name=yours;DeviceSettings.Fax.Redials=9;"
        "DeviceNetwork.WiFiSettings.Mac_Configuration.Channel=11;");
    EXPECT_EQ(model_.ChangedValues().size(), 3u);
    Ask("DeviceSettings.System.RestoreDefaults=Network;");
    EXPECT_EQ(model_.ChangedValues().count("DeviceNetwork.WiFiSettings.Mac_Configuration.Channel"), 0u);
    EXPECT_EQ(model_.ChangedValues().count("DeviceSettings.Fax.Redials"), 1u);
    Ask("DeviceSettings.System.RestoreDefaults=All;");
    EXPECT_EQ(Ask("DeviceSettings.System.Name?"), "0000,DeviceSettings.System.Name=mine;");
    EXPECT_TRUE(model_.ChangedValues().empty());
}

// Hostile requests: every text gets exactly one reply that the product's own framer takes.
TEST_F(VprinterResponder, Every_reply_is_one_whole_message) {
    uint32_t state = 1;
    constexpr std::string_view pieces[] = {
        "DeviceSettings.Fax.Redials",
        "ZRCache",
        "Maintenance",
        "=",
        "?",
        ";",
        "#",
        "&",
        ",",
        "4",
        "TRUE",
        "\xFF",
        "\x01",
        "3400",
        "[1].Name",
        " ",
    };
    for (int round = 0; round < 5000; ++round) {
        std::string request;
        for (int i = 0; i < 8; ++i) {
            state = state * 1664525 + 1013904223;
            request += pieces[(state >> 16) % std::size(pieces)];
        }
        const std::string reply = Ask(request);
        OPLParser parser;
        const char* message = nullptr;
        uint32_t length = 0;
        ASSERT_EQ(static_cast<int>(
                      parser.ParseStream(reply.data(), static_cast<uint32_t>(reply.size()), message, length)),
                  0)
            << request << "\n  " << reply;
        ASSERT_EQ(length, reply.size()) << request << "\n  " << reply;
    }
}

class VprinterStateFile : public ::testing::Test {
  protected:
    void TearDown() override { std::filesystem::remove(path_); }
    void Write(std::string_view text) { std::ofstream(path_) << text; }

    std::string path_ = ::testing::TempDir() + "vprinter_state_" +
                        ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".json";
};

TEST_F(VprinterStateFile, Changed_values_of_every_printer_survive) {
    DeviceModel model;
    ASSERT_EQ(model.SetFromText(*model.Find("DeviceSettings.System.Name"), "na\xEFve;\x01"), "");
    ASSERT_EQ(model.SetFromText(*model.Find(KeyText(OplKey::StaticIPAddress)), "10.0.0.1"), "");
    StateFile first(path_);
    first.Load();
    ASSERT_TRUE(first.Save("USB001", model.ChangedValues()));
    ASSERT_TRUE(first.Save("USB002", {}));

    StateFile second(path_);
    second.Load();
    ASSERT_TRUE(second.Save("USB003", {}));  // keeps what it does not serve
    StateFile third(path_);
    third.Load();
    DeviceModel restored;
    third.Restore("USB001", restored);
    EXPECT_EQ(restored.ChangedValues(), model.ChangedValues());
    EXPECT_EQ(restored.ChangedValues().size(), 2u);
#ifndef _WIN32  // where the folder protects its files
    EXPECT_EQ(std::filesystem::status(path_).permissions() & std::filesystem::perms::others_read,
              std::filesystem::perms::none);
#endif
}

TEST_F(VprinterStateFile, A_file_that_cannot_be_used_is_refused_with_the_reason) {
    const struct {
        std::string_view text;
        std::string_view reason;
    } cases[] = {
        {"{", "not a state file"},
        {"[]", "not a state file"},
        {R"({"version": 2, "printers": {}})", "is of version 2, expected 1"},
        {R"({"version": 1, "printers": {"USB001": {"DeviceSettings.Fax.Redials": 3}}})", "not a state file"},
        {R"({"version": 1, "printers": {"USB001": {"DeviceSettings.Fax.Redials": "11"}}})",
         "DeviceSettings.Fax.Redials: Expected a number from 0 to 10"},
        {R"({"version": 1, "printers": {"USB001": {"Foo": "11"}}})", "there is no such setting"},
    };
    for (const auto& expected : cases) {
        Write(expected.text);
        std::string reason = "taken";
        try {
            StateFile state(path_);
            state.Load();
            DeviceModel model;
            state.Restore("USB001", model);
        } catch (const UserError& error) {
            reason = error.what();
        }
        EXPECT_NE(reason.find(expected.reason), std::string::npos) << expected.text << "\n  " << reason;
    }
}

}  // namespace
}  // namespace vprinter
