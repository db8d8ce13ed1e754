#include "vprinter/files/dump_file.h"

#include <string>
#include <utility>

#include "asked_printer.h"
#include "shared/user_error.h"
#include "vprinter/device/status_block.h"

namespace vprinter {
namespace {

std::string DumpOf(const std::string& parts) {
    return std::string(R"({"format":"kestrel-dump","version":1,"secrets":"left out")") +
           (parts.empty() ? "" : ",") + parts + "}";
}

std::string ComplaintOf(const std::string& text) {
    try {
        DeviceModel model;
        static_cast<void>(DumpFile::Parse(text, "d.json").Adopt(model));
    } catch (const tools::UserError& error) {
        return error.what();
    }
    return "taken";
}

TEST(VprinterDump, A_file_that_cannot_be_used_is_refused_with_the_place_and_the_reason) {
    const std::string edge = R"("stateNumber":0,"text":"")";
    const std::pair<std::string, std::string> cases[] = {
        {DumpOf(""), "taken"},
        {"{\n\"format\":", "d.json:2: "},
        {"[]", "d.json: expected \"format\""},
        {R"({"format":"x"})", "no dump of a printer"},
        {R"({"format":"kestrel-dump","version":2})", "version 2, and this program reads version 1"},
        {std::string(2 << 20, ' '), "2097152 bytes"},
        {DumpOf(R"("inks":[])"), "no part \"inks\""},
        {DumpOf(R"("settings":{"fax.redial":3})"), "settings, fax.redial: no printer has a setting"},
        {DumpOf(R"("settings":{"fax.redials":"3"})"), "settings, fax.redials: expected a whole number"},
        {DumpOf(R"("settings":{"fax.redials":256})"), "from 0 to 255 instead of 256"},
        {DumpOf(R"("settings":{"photo.copies":120})"), "taken"},  // more than this model would take
        {DumpOf(R"("settings":{"photo.mode":"Strange"})"), "settings, photo.mode: Expected one of"},
        {DumpOf(R"("settings":{"fax.senders-name":"\u0416\u4e00"})"), "code page lacks"},
        {DumpOf(R"("settings":{"wireless.pass-phrase":7})"), "taken"},  // left out, so not looked at
        {DumpOf(R"("settings":{"fax.rings":{"error":{}}})"), "settings, fax.rings: expected \"request\""},
        {DumpOf(R"("status":{"connection":"usb","inks":[{"name":"gold","percent":1}],)" + edge + "}"),
         "status, ink.gold: the virtual printer has no such ink"},
        {DumpOf(R"("status":{"connection":"usb","stateNumber":55,"text":""})"),
         "stateNumber: 55 is no state"},
        {DumpOf(R"("addressBook":{"one-touch":[{"number":5,"type":"fax","name":"","address":""}]})"),
         "addressBook, one-touch, 5: there is no such record"},
        {DumpOf(R"("accessPoints":[{"ssid":"a","macAddress":"02:4B"}])"),
         "accessPoints, a: expected six bytes"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_NE(ComplaintOf(text).find(expected), std::string::npos) << text.substr(0, 200) << '\n'
                                                                       << ComplaintOf(text);
}

class DumpedPrinter : public AskedPrinter {
  protected:
    void Become(const std::string& parts) {
        responder_.Adopt(DumpFile::Parse(DumpOf(parts), "d.json").Adopt(model_));
    }
};

TEST_F(DumpedPrinter, What_was_refused_or_unanswered_is_so_again_until_it_is_set) {
    Become(
        R"("settings":{"fax.rings":{"error":{"request":"DeviceSettings.Fax.Rings?","badReply":"1001,no\\x01;"}},)"
        R"("fax.mode":{"error":{"request":"DeviceSettings.Fax.Mode?"}}},"hosts":["a,b"],)"
        R"("identity":{"gcp":true,"pennant":null})");
    EXPECT_EQ("1001,no\x01;", Ask("DeviceSettings.Fax.Rings?"));
    EXPECT_EQ("", Ask("DeviceSettings.Fax.Mode?"));
    EXPECT_EQ(
        "0101,DeviceNetwork.Network.GetMDNSHostList[0]=a\x1B"
        "b;",
        Ask("DeviceNetwork.Network.GetMDNSHostList?"));
    EXPECT_EQ("0000,DeviceSettings.System.Configuration.isGCPConfigured=YES;",
              Ask("DeviceSettings.System.Configuration?"));
    EXPECT_TRUE(responder_.Answer("DeviceSettings.Fax.Rings?", 1, Reach::NotReached).starts_with("100003,"));
    static_cast<void>(responder_.AnswerInVain("DeviceSettings.Fax.Rings=5;", 1));
    EXPECT_EQ("1001,no\x01;", Ask("DeviceSettings.Fax.Rings?"));
    Ask("DeviceSettings.Fax.Rings=5;");
    EXPECT_EQ("0000,DeviceSettings.Fax.Rings=5;", Ask("DeviceSettings.Fax.Rings?"));
    responder_.Restart();
    EXPECT_EQ("1001,no\x01;", Ask("DeviceSettings.Fax.Rings?"));
}

TEST_F(DumpedPrinter, A_state_goes_when_its_reason_goes) {
    Become(R"("status":{"connection":"usb","inks":[{"name":"black","percent":0}],"stateNumber":4,)"
           R"("text":"Replace the empty cartridge"})");
    EXPECT_EQ(PrinterState::InkOut, StateOf(model_, false));
    model_.Change("ink.black", "50");
    EXPECT_EQ(PrinterState::Ready, StateOf(model_, false));
}

TEST_F(DumpedPrinter, A_search_finds_a_hidden_network_with_the_data_that_it_had) {
    Become(
        R"("settings":{"wireless.radio":true},"accessPoints":[{"ssid":"","macAddress":"02:4B:53:00:00:77",)"
        R"("signalStrength":61,"beaconInterval":100,"capabilities":17,"channel":6,"encryption":3}])");
    NetworkActivity& network = responder_.Device().Network();
    network.Search();
    tickMs_ += 60'000;
    ASSERT_EQ(1U, network.AccessPoints().size());
    EXPECT_EQ("", network.AccessPoints()[0].name);
    EXPECT_EQ(61, network.AccessPoints()[0].signalStrength);
}

}  // namespace
}  // namespace vprinter
