#include "vprinter/requests/responder.h"

#include <utility>

#include "asked_printer.h"
#include "opl/vocabulary.h"
#include "refusal.h"
#include "vprinter/files/state_file.h"

namespace vprinter {
namespace {

using VprinterResponder = AskedPrinter;

TEST_F(VprinterResponder, A_reply_is_never_longer_than_a_message) {
    std::string endless;
    while (endless.size() < 65'000)
        endless += "ZRPing?DeviceSettings.Fax.Redials?";
    EXPECT_LE(Ask(endless).size(), 65'791u);
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
    ASSERT_EQ(model_.SetInitial(opl::KeyText(opl::Key::FriendlyName), "mine"), "");
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
    ASSERT_EQ(model_.SetFromText(*model_.Find(opl::KeyText(opl::Key::StaticIPAddress)), "10.0.0.1"), "");
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
    const std::pair<std::string, const char*> cases[] = {
        {"{", "not a state file"},
        {"[]", "not a state file"},
        {R"({"version": 2, "printers": {}})", "is of version 2, expected 1"},
        {begin + R"("DeviceSettings.Fax.Redials": 3}}})", "not a state file"},
        {begin + R"("DeviceSettings.Fax.Redials": "11"}}})", "Redials: Expected a number from 0 to 10"},
        {begin + R"("Foo": "11"}}})", "there is no such setting"},
    };
    for (const auto& [text, reason] : cases) {
        SCOPED_TRACE(text);
        Write(text);
        ExpectComplaint(reason, [this] {
            StateFile state(path_);
            state.Load();
            state.Restore("USB001", model_);
        });
    }
}

}  // namespace
}  // namespace vprinter
