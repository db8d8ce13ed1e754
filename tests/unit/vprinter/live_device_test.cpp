// What changes in the virtual printer by itself, with time or by its control file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "asked_printer.h"
#include "vprinter/control_file.h"

namespace vprinter {
namespace {

using namespace std::literals;

class VprinterLiveDevice : public AskedPrinter {
  protected:
    /// The 1,316 bytes of the status block.
    std::string Status() { return Ask("ZRGetStatus?").substr("0000,ZRGetStatus#1316="sv.size(), 1316); }

    static std::string Escaped(std::string text) {
        std::replace(text.begin(), text.end(), '.', '\x1C');
        return text;
    }

    static uint32_t NumberAt(const std::string& block, size_t offset) {
        uint32_t number = 0;
        std::memcpy(&number, block.data() + offset, sizeof(number));
        return number;
    }

    std::string Control(std::string_view text) {
        Write(text);
        return control_.Apply(model_);
    }

    ControlFile control_{path_, "USB001"};
};

TEST_F(VprinterLiveDevice, The_status_block_tells_the_condition) {
    EXPECT_EQ(NumberAt(Status(), 8), 0u);
    EXPECT_EQ(NumberAt(Status(), 20), 75u);
    EXPECT_EQ(NumberAt(Status(), 28), 60u);
    EXPECT_EQ(Status()[740], 1);
    EXPECT_EQ(Status().substr(760, 12), "R\0e\0a\0d\0y\0\0\0"s);

    const char* const jammed = R"({"USB001": {"status.error": "Paper_Jam", "status.connection": "Network",
                                              "ink.black": 5}, "USB002": {"nonsense": 1}})";
    EXPECT_EQ(Control(jammed), "");
    EXPECT_EQ(NumberAt(Status(), 8), 2u);
    EXPECT_EQ(NumberAt(Status(), 20), 5u);
    EXPECT_EQ(Status()[740], 0);

    EXPECT_EQ(Control(R"({"*": {"status.known": false, "status.text": "unseen"}})"), "");
    EXPECT_EQ(NumberAt(Status(), 8), 100000u);
    EXPECT_EQ(Status().substr(760, 2), "\0\0"s);
    EXPECT_EQ(NumberAt(Ask("ZRGetCapabilities?").substr("0000,ZRGetCapabilities#48="sv.size()), 0), 48u);
}

TEST_F(VprinterLiveDevice, A_control_file_is_taken_whole_or_refused_with_the_reason) {
    constexpr std::pair<const char*, const char*> kRefused[] = {
        {R"({"USB001": {"ink.cyan": 1, "ink.black": 101}})", "ink.black: Expected a number from 0 to 100"},
        {R"({"USB001": {"ink.cyan": 1, "ink.gold": 5}})", "ink.gold: there is nothing of this name"},
        {R"({"USB001": {"ink.cyan": [1]}})", "is not taken"},
        {"{", "is not taken"},
    };
    for (const auto& [text, reason] : kRefused)
        EXPECT_NE(Control(text).find(reason), std::string::npos) << text;
    EXPECT_EQ(model_.Value("ink.cyan"), "60");
    EXPECT_EQ(Ask("ink.cyan?"), "3400,Unknown: ink.cyan_;");

    EXPECT_EQ(Control(R"({"USB001": {"device.online": false, "device.orders-supplies": false}})"), "");
    EXPECT_TRUE(Ask("DeviceSettings.Fax.Redials?").starts_with("100003,"));
    EXPECT_TRUE(Ask("Maintenance=001?").starts_with("100003,"));
    EXPECT_EQ(Ask("ZRPing?"), "0000,ZRPing;");
    EXPECT_EQ(Control(R"({"USB001": {"device.online": true}, "*": {}})"), "");
    EXPECT_EQ(Ask("OrderInk?"), "0000,OrderInk=FALSE;");
}

TEST_F(VprinterLiveDevice, A_control_file_of_the_same_time_and_size_is_known_by_its_text) {
    ASSERT_EQ(Control(R"({"*": {"ink.black": 10}})"), "");
    const auto time = std::filesystem::last_write_time(path_);
    Write(R"({"*": {"ink.black": 20}})");
    std::filesystem::last_write_time(path_, time);
    EXPECT_EQ(control_.Apply(model_), "");
    EXPECT_EQ(model_.Value("ink.black"), "20");
}

TEST_F(VprinterLiveDevice, The_clock_runs_from_what_was_set) {
    const std::string time = "DeviceSettings.System.Time";
    localSeconds_ += 30 * 86'400;  // the 31st: the month that is set next is shorter
    Ask(time + ".Month=6;" + time + ".Hour=23;" + time + ".Minute=59;");
    localSeconds_ += 60;
    EXPECT_EQ(Ask(time + "?"), "0000," + time + ".Year=2012&" + time + ".Month=7&" + time + ".Day=1&" + time +
                                   ".Hour=0&" + time + ".Minute=0;");
    EXPECT_TRUE(Ask(time + ".Month=2;" + time + ".Day=30;").starts_with("3450,Expected a day from 1 to 29"));

    const std::string rtc = "DeviceSettings.System.RTCTime";
    EXPECT_TRUE(Ask(rtc + "=0123456789ABCDEF1782EA30112C;").starts_with("0000,"));
    localSeconds_ += 16;
    EXPECT_EQ(Value(rtc), "0123456789ABCDEF1782EA40112C");
    for (const char* bad : {"0123456789ABCDEF1782EA30112", "0123456789abcdef1782EA30112C", ""})
        EXPECT_TRUE(Ask(rtc + "=" + bad + ";").starts_with("3450,")) << bad;
}

TEST_F(VprinterLiveDevice, Access_points_pings_and_hosts_come_with_time) {
    ASSERT_EQ(Control(R"({"USB001": {"search.networks": "one, two", "search.seconds": 2}})"), "");
    const std::string points = "DeviceNetwork.WiFiAccessPoints.";
    Ask(points + "SearchAccessPoints=YES;");
    tickMs_ += 1000;
    EXPECT_EQ(Value(points + "AccessPointsFound"), "1");
    EXPECT_TRUE(
        Ask(points + "GetAccessPoints?").starts_with("0101," + points + "GetAccessPoints[0].MacAddr#6="));

    const std::string network = "DeviceNetwork.Network.";
    const auto pings = [&] {
        return Value(network + "GetPingResult.NumOfPingExecuted") + " made, " +
               Value(network + "GetPingResult.NumOfPingSuccess") + " answered";
    };
    const std::string ping = network + "SetPing.NumOfPing=4;" + network + "SetPing.TimeoutOfPing=2;";
    Ask(ping);
    tickMs_ += 450;
    EXPECT_EQ(pings(), "2 made, 2 answered");
    tickMs_ += 60'000;
    EXPECT_EQ(pings(), "4 made, 4 answered");
    ASSERT_EQ(Control(R"({"*": {"DeviceNetwork.WiFiStatus.CurrentState": "Disconnected"}})"), "");
    EXPECT_EQ(pings(), "4 made, 4 answered") << "those made before stay answered";
    Ask(ping);
    tickMs_ += 4100;  // two time-outs
    EXPECT_EQ(pings(), "2 made, 0 answered");
    EXPECT_EQ(Value(network + "GetMDNSHostList"), "(null)");
}

TEST_F(VprinterLiveDevice, An_upgrade_takes_a_firmware_file_and_its_time) {
    // As the library sends it: escaped, in the ANSI code page, with either separator.
    const std::filesystem::path file = std::filesystem::path(path_) += u8"_\u20AC";
    std::string request = "ZRUpgradeFW=" + Escaped(path_) + "_\x80;";
    request[request.find_last_of("/\\")] = '\\';
    EXPECT_TRUE(Ask(request).starts_with("100113,"));
    for (const char* bad : {"", "ZRFW 1 9900.2210.420", "ZRFW 2 9900.2210.420\n", "ZRFW 1 9900.2210\n",
                            "ZRFW 1 8800.2210.420\n", "ZRFW 1 9900.2210.420x\n"}) {
        std::ofstream(file) << bad;
        EXPECT_TRUE(Ask(request).starts_with("100114,")) << bad;
    }
    std::ofstream(file) << "ZRFW 1 9900.2210.420\nand the rest";
    EXPECT_EQ(Ask(request), "0101,ZRUpgradeFW;");
    EXPECT_TRUE(Ask(request).starts_with("1999,"));
    std::filesystem::remove(file);
    tickMs_ += 2500;
    EXPECT_EQ(NumberAt(Status(), 8), 101u);
    EXPECT_EQ(NumberAt(Status(), 12), 50u);
    tickMs_ += 2500;
    EXPECT_EQ(Value("DeviceSettings.System.Version.Printer"), Escaped("9900.2210.420"));
    EXPECT_EQ(NumberAt(Status(), 12), 0xFFFFFFFFu);
    Ask("DeviceSettings.System.RestoreDefaults=All;");
    EXPECT_EQ(Value("DeviceSettings.System.Version.Lagoon"), "420");
}

}  // namespace
}  // namespace vprinter
