#include "vprinter/responder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

#include "asked_printer.h"
#include "opl/vocabulary.h"
#include "vprinter/state_file.h"
#include "vprinter/user_error.h"

namespace vprinter {
namespace {

using namespace std::literals;

using VprinterResponder = AskedPrinter;

TEST_F(VprinterResponder, Settings_are_read_set_and_judged_by_their_type) {
    const std::string ip = std::string(KeyText(OplKey::StaticIPAddress));
    const std::string record = "DeviceSettings.AddressBook.SpeedDialRecords.NamedSingleEntry";
    // Each request with the beginning of its reply.
    const std::pair<std::string, std::string> cases[] = {
        {"DeviceSettings.Fax.Redials=10;", "0000,"},
        {"DeviceSettings.Fax.Redials=007;", "0000,DeviceSettings.Fax.Redials=7;"},
        {"DeviceSettings.Fax.Redials=11;", "3450,Expected a number from 0 to 10: DeviceSettings.Fax."},
        {"DeviceSettings.Fax.Redials=-1;", "3450,"},
        {"DeviceSettings.Fax.Redials=3x;", "3450,"},
        {"DeviceSettings.Fax.Redials#1=3;", "3450,"},
        {"DeviceSettings.Fax.Redials?", "0000,DeviceSettings.Fax.Redials=7;"},
        {"DeviceSettings.Copy.Preview=yEs;", "0000,DeviceSettings.Copy.Preview=YES;"},
        {"DeviceSettings.Copy.Preview=OFF;", "0000,DeviceSettings.Copy.Preview=NO;"},
        {"DeviceSettings.Copy.Preview=Off;", "3450,"},
        {"DeviceSettings.Photo.Quality=draft;", "3450,Expected one of Draft Normal Presentation: "},
        {"DeviceSettings.System.Name=a\x1Dz;", "0000,DeviceSettings.System.Name=a\x1Dz;"},
        {"DeviceSettings.System.Name=" + std::string(63, 'n') + ";", "0000,"},
        {"DeviceSettings.System.Name=" + std::string(64, 'n') + ";", "3450,Expected at most 63 characters"},
        {record + "[0].AddressType=Phone;", "3450,"},
        {record + "[0].Name=" + std::string(40, 'n') + ";", "3450,"},
        {record + "[0].Address=" + std::string(50, 'a') + ";", "3450,"},
        {record + "[60].Name?", "3400,"},
        {"DeviceSettings.AddressBook.OneTouchDialRecords.NamedSingleEntry[5].Name?", "3400,"},
        {ip + "#4=\x0A\x00\x00;;"s, "0000," + ip + "#4=\x0A\x00\x00;;"s},
        {ip + "#5=12345;", "3450,"},
        {"DeviceSettings.System.Information.RPID=x;", "3400,Cannot be set: "},
        {"DeviceSettings.System.RestoreDefaults?", "3400,Cannot be read: "},
        {"DeviceSettings.Fax.Redials=3?", "3400,"},
        {"A&b,;\xFF#\x01=?", "3400,The key is followed by neither a question nor a value: A_b_______;"},
    };
    for (const auto& [request, reply] : cases)
        EXPECT_TRUE(Ask(request).starts_with(reply)) << request << "\n  " << Ask(request);
}

TEST_F(VprinterResponder, A_compound_request_gets_one_reply_and_stops_at_the_first_refusal) {
    EXPECT_EQ(Ask("DeviceSettings.Fax.Redials=5;DeviceSettings.Fax.Rings?"),
              "0000,DeviceSettings.Fax.Redials=5&DeviceSettings.Fax.Rings=4;");
    EXPECT_TRUE(Ask("DeviceSettings.Fax.Redials=6;DeviceSettings.Fax.Rings=0;DeviceSettings.Fax.Redials=7;")
                    .starts_with("3450,"));
    EXPECT_EQ(Value("DeviceSettings.Fax.Redials"), "6");

    std::string endless;
    while (endless.size() < 65'000)
        endless += "ZRPing?DeviceSettings.Fax.Redials?";
    EXPECT_LE(Ask(endless).size(), 65'791u);
}

TEST_F(VprinterResponder, Words_have_their_response_numbers_and_the_lock_belongs_to_one_living_client) {
    constexpr uint32_t kOther = 200;
    constexpr struct {
        std::string_view request;
        std::string_view reply;
        uint32_t client = kClient;
    } kCases[] = {
        {"ZRTimeoutParam=4750;", "0000,ZRTimeoutParam=4750;"},
        {"ZRTimeoutParam=4x;", "3450,Expected milliseconds: ZRTimeoutParam;"},
        {"ZRCache=TRUE;", "0101,ZRCache=TRUE;"},
        {"ZRCache=YES;", "3450,Expected TRUE or FALSE: ZRCache;"},
        {"Maintenance=007?", "0096,Maintenance=007;"},
        {"Maintenance=008?", "3400,Unknown: Maintenance_008_;"},
        {"Maintenance=001;", "3400,Unknown: Maintenance_001_;"},
        {"LockPrinter?", "0002,LockPrinter;"},
        {"LockPrinter?", "0002,LockPrinter;"},
        {"LockPrinter?", "1999,Locked by process: 100;", kOther},
        {"UnlockPrinter?", "1999,Locked by process: 100;", kOther},
        {"DeviceSettings.Fax.Redials=1;", "1999,Locked by process: 100;", kOther},
        {"DeviceSettings.Fax.Redials?", "0000,DeviceSettings.Fax.Redials=3;", kOther},
        {"UnlockPrinter?", "0003,UnlockPrinter;"},
        {"LockPrinter?", "0002,LockPrinter;", kDead},
        {"LockPrinter?", "0002,LockPrinter;", kOther},
    };
    for (const auto& row : kCases)
        EXPECT_EQ(Ask(row.request, row.client), row.reply) << row.client;
}

TEST_F(VprinterResponder, A_client_has_given_up_after_the_time_out_that_it_announced) {
    EXPECT_FALSE(responder_.HasGivenUp(kClient, 1'000'000));
    Ask("ZRTimeoutParam=950;");
    Ask("ZRTimeoutParam=-214748366;", kDead);
    EXPECT_FALSE(responder_.HasGivenUp(kClient, 1000));
    EXPECT_TRUE(responder_.HasGivenUp(kClient, 1001));
    EXPECT_FALSE(responder_.HasGivenUp(kDead, 1'000'000));
    for (uint32_t flood = 1000; flood < 1100; ++flood)
        Ask("ZRTimeoutParam=1;", flood);
    EXPECT_FALSE(responder_.HasGivenUp(kClient, 1001)) << "forgotten, not mixed up";
}

TEST_F(VprinterResponder, Restoring_defaults_goes_back_to_the_first_values) {
    ASSERT_EQ(model_.SetInitial(KeyText(OplKey::FriendlyName), "mine"), "");
    Ask("DeviceSettings.System.Name=yours;DeviceNetwork.WiFiSettings.Mac_Configuration.Channel=11;");
    EXPECT_EQ(model_.ChangedValues().size(), 2u);
    Ask("DeviceSettings.System.RestoreDefaults=Network;");
    EXPECT_EQ(model_.ChangedValues(), (ValueMap{{"DeviceSettings.System.Name", "yours"}}));
    Ask("DeviceSettings.System.RestoreDefaults=All;");
    EXPECT_EQ(Value("DeviceSettings.System.Name"), "mine");
    EXPECT_TRUE(model_.ChangedValues().empty());
}

using VprinterStateFile = AskedPrinter;

TEST_F(VprinterStateFile, Changed_values_of_every_printer_survive) {
    ASSERT_EQ(model_.SetFromText(*model_.Find("DeviceSettings.System.Name"), "na\xEFve;\x01"), "");
    ASSERT_EQ(model_.SetFromText(*model_.Find(KeyText(OplKey::StaticIPAddress)), "10.0.0.1"), "");
    ASSERT_TRUE(StateFile(path_).Save("USB001", model_.ChangedValues()));
    StateFile second(path_);
    second.Load();
    ASSERT_TRUE(second.Save("USB003", {})) << "keeps what it does not serve";
    StateFile third(path_);
    third.Load();
    DeviceModel restored;
    third.Restore("USB001", restored);
    EXPECT_EQ(restored.ChangedValues(), model_.ChangedValues());
    EXPECT_EQ(restored.ChangedValues().size(), 2u);
#ifndef _WIN32  // where the folder protects its files
    EXPECT_EQ(std::filesystem::status(path_).permissions() & std::filesystem::perms::others_read,
              std::filesystem::perms::none);
#endif
}

TEST_F(VprinterStateFile, A_file_that_cannot_be_used_is_refused_with_the_reason) {
    const std::string begin = R"({"version": 1, "printers": {"USB001": {)";
    const std::pair<std::string, std::string_view> cases[] = {
        {"{", "not a state file"},
        {"[]", "not a state file"},
        {R"({"version": 2, "printers": {}})", "is of version 2, expected 1"},
        {begin + R"("DeviceSettings.Fax.Redials": 3}}})", "not a state file"},
        {begin + R"("DeviceSettings.Fax.Redials": "11"}}})", "Redials: Expected a number from 0 to 10"},
        {begin + R"("Foo": "11"}}})", "there is no such setting"},
    };
    for (const auto& [text, reason] : cases) {
        Write(text);
        try {
            StateFile state(path_);
            state.Load();
            state.Restore("USB001", model_);
            ADD_FAILURE() << "taken: " << text;
        } catch (const UserError& error) {
            EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
        }
    }
}

}  // namespace
}  // namespace vprinter
