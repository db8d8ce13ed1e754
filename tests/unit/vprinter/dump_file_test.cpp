#include "vprinter/files/dump_file.h"

#include "asked_printer.h"
#include "refusal.h"
#include "sections.h"
#include "vprinter/device/status_block.h"

namespace vprinter {
namespace {

constexpr const char* kDumps = UNIT_TESTS "/vprinter/dumps.txt";

std::string DumpOf(const std::string& parts) {
    return R"({"format":"kestrel-dump","version":1,"secrets":"left out",)" + parts + "}";
}

void ExpectComplaintAbout(const std::string& text, const std::string& part) {
    ExpectComplaint(part, [&] {
        DeviceModel model;
        return DumpFile::Parse(text, "d.json").Adopt(model);
    });
}

TEST(VprinterDump, A_file_that_cannot_be_used_is_refused_with_the_place_and_the_reason) {
    ForEachCase(kDumps, "Files", [](std::string text, const std::string& complaint) {
        std::ranges::replace(text, '|', '\n');
        ExpectComplaintAbout(text, complaint);
    });
    ForEachCase(kDumps, "Parts", [](const std::string& part, const std::string& complaint) {
        ExpectComplaintAbout(DumpOf(part), complaint);
    });
    ExpectComplaintAbout(R"({"format":"kestrel-dump","version":1,"secrets":"left out"})", "no complaint");
    ExpectComplaintAbout(std::string(2 << 20, ' '), "2097152 bytes");
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
