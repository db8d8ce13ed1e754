// The families of functions against the virtual printer, end to end: what is written is read again, what
// takes time comes to its end, what the printer refuses is refused.
#include <kestrel/sdk.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "installed_printer.h"

namespace {

class Families : public InstalledPrinter {
  protected:
    // What befalls the printer while it runs.
    void Happens(const std::string& json) {
        std::ofstream(home_ / "control.new") << "{\"*\": " << json << "}";
        std::filesystem::rename(home_ / "control.new", home_ / "control.json");
    }
    void StartChangeablePrinter() { StartPrinter("", {"--control", (home_ / "control.json").string()}); }

    // Until it holds, for `seconds` at most.
    static bool Comes(int seconds, const std::function<bool()>& condition) {
        for (int i = 0; i < seconds * 10; ++i) {
            if (condition()) return true;
            Sleep(100);
        }
        return false;
    }
};

TEST_F(Families, Both_lists_of_destinations_are_kept_whole) {
    StartPrinter();
    WithPrinter([] {
        std::array<KestrelQuickDial, KESTREL_SPEED_DIAL_RECORDS> written = {};
        for (uint32_t i = 0; i < written.size(); ++i) {
            written[i].addressType = i % 3;
            // The longest texts, of characters that travel escaped.
            std::fill_n(written[i].name, 39, i % 2 != 0 ? TEXT(';') : TEXT('n'));
            std::fill_n(written[i].address, 49, TEXT('&'));
        }
        ASSERT_TRUE(SetQuickDialNumbers(written.data(), kLong)) << GetLastError();
        std::array<KestrelQuickDial, KESTREL_SPEED_DIAL_RECORDS> read = {};
        ASSERT_TRUE(GetQuickDialNumbers(read.data(), kLong)) << GetLastError();
        EXPECT_EQ(0, std::memcmp(written.data(), read.data(), sizeof(written)));

        ASSERT_TRUE(SetQuickDialButtons(written.data(), kLong)) << GetLastError();
        ASSERT_TRUE(SetQuickDialButton(4, &written[59], kLong)) << GetLastError();
        ASSERT_TRUE(GetQuickDialButtons(read.data(), kLong)) << GetLastError();
        EXPECT_EQ(0, std::memcmp(written.data(), read.data(), 4 * sizeof(written[0])));
        EXPECT_EQ(0, std::memcmp(&written[59], &read[4], sizeof(written[0])));
        EXPECT_FALSE(GetQuickDialButton(5, read.data(), kLong)) << "the printer has five";
    });
}

TEST_F(Families, A_search_finds_access_points_and_a_ping_is_answered) {
    StartChangeablePrinter();
    Happens(
        R"x({"search.seconds": 1, "search.networks": "attic,(null)", "network.hosts": "a.local,b.local"})x");
    WithPrinter([] {
        uint32_t count = 9;
        EXPECT_TRUE(GetNumAccessPoints(&count, kLong));
        EXPECT_EQ(0u, count) << "nothing is found before a search";
        ASSERT_TRUE(StartSearchForAccessPoints(kLong)) << GetLastError();
        EXPECT_TRUE(Comes(10, [&] { return GetNumAccessPoints(&count, kLong) && count == 2; })) << count;
        KestrelAccessPoint points[KESTREL_MAX_ACCESS_POINTS];
        ASSERT_TRUE(GetAccessPoints(points, kLong)) << GetLastError();
        EXPECT_EQ(WideText(TEXT("attic")), Text(points[0].ssid));
        EXPECT_EQ(17u, Text(points[0].macAddress).size());
        EXPECT_EQ(WideText(), Text(points[1].ssid));
        EXPECT_EQ(0, points[2].macAddress[0]);

        ASSERT_TRUE(SetPing(0x0100007F, 2, 1, kLong)) << GetLastError();
        uint32_t answered = 0;
        EXPECT_TRUE(Comes(10, [&] { return GetNumOfPingSuccess(&answered, kLong) && answered == 2; }));
        EXPECT_TRUE(GetNumOfPingExecuted(&count, kLong));
        EXPECT_EQ(2u, count);

        KestrelHost hosts[KESTREL_MAX_HOSTS];
        ASSERT_TRUE(GetMDNSHostList(hosts, kLong)) << GetLastError();
        EXPECT_EQ(WideText(TEXT("b.local")), Text(hosts[1].name));
        EXPECT_EQ(0, hosts[2].name[0]);
    });
}

TEST_F(Families, The_clock_is_set_and_runs) {
    StartPrinter();
    WithPrinter([] {
        ASSERT_TRUE(SetDeviceTime(2020, 2, 29, 23, 59, kLong)) << GetLastError();
        std::array<uint32_t, 5> time = {};
        ASSERT_TRUE(GetDeviceTime(&time[0], &time[1], &time[2], &time[3], &time[4], kLong)) << GetLastError();
        EXPECT_EQ((std::array<uint32_t, 5>{2020, 2, 29, 23, 59}), time);
        ASSERT_TRUE(SetCurrentTimeRTC(kLong)) << GetLastError();
        kestrel_char first[29];
        kestrel_char second[29];
        ASSERT_TRUE(GetCurrentTimeRTC(first, kLong)) << GetLastError();
        Sleep(1100);
        ASSERT_TRUE(GetCurrentTimeRTC(second, kLong));
        EXPECT_EQ(28u, Text(second).size());
        EXPECT_LT(Text(first), Text(second));
        EXPECT_FALSE(SetDeviceTime(2021, 13, 1, 0, 0, kLong)) << "the printer judges";
    });
}

TEST_F(Families, Firmware_is_upgraded_from_a_good_file_only) {
    StartChangeablePrinter();
    Happens(R"({"upgrade.seconds": 1})");
    const std::string good = (home_ / "good.fw").string();
    std::ofstream(good) << "ZRFW 1 9900.2210.420\n";
    const std::string bad = (home_ / "bad.fw").string();
    std::ofstream(bad) << "something else\n";
    WithPrinter([&] {
        EXPECT_FALSE(UpgradeFW(Widened(bad).c_str()));
        EXPECT_NE(101u, GetLastResponseNum());
        ASSERT_TRUE(UpgradeFW(Widened(good).c_str())) << GetLastError();
        uint32_t lagoon = 0;
        uint32_t customer = 0;
        kestrel_char version[64];
        EXPECT_TRUE(Comes(10, [&] {
            return GetFWVersion(&lagoon, &customer, version, kLong) && lagoon == 420;
        })) << lagoon;
        EXPECT_EQ(2210u, customer);
        EXPECT_TRUE(RefreshFWCapabilities(kLong)) << GetLastError();
    });
}

TEST_F(Families, A_lock_keeps_other_programs_out_until_it_is_given_back_or_its_holder_dies) {
    StartPrinter();
    ChildProcess holder({KESTREL_CLIENT, "-p", "P", "--json", "lock"});
    EXPECT_TRUE(Comes(5, [] { return RunClient({"-p", "P", "set", "fax.redials", "4"}).code == 5; }));
    holder.WriteLine("");
    EXPECT_NE(std::string::npos, holder.ReadAll().find("\"endedBy\": \"enter\""));
    EXPECT_EQ(0, holder.Wait());
    WithPrinter([] { EXPECT_TRUE(SetFaxRedials(4, kLong)) << GetLastError(); });
    ChildProcess victim({KESTREL_CLIENT, "-p", "P", "lock"});
    EXPECT_TRUE(Comes(5, [] { return RunClient({"-p", "P", "set", "fax.redials", "4"}).code == 5; }));
    victim.Kill();
    victim.Wait();
    WithPrinter([] { EXPECT_TRUE(SetFaxRedials(5, kLong)) << GetLastError(); });
}

TEST_F(Families, A_printer_killed_in_the_middle_of_a_list_ends_it_with_an_error) {
    StartPrinter(R"([{"match":"DeviceSettings.AddressBook*","skip":20,"crashBefore":true}])");
    WithPrinter([] {
        KestrelQuickDial records[KESTREL_SPEED_DIAL_RECORDS];
        EXPECT_FALSE(GetQuickDialNumbers(records, 1000));
        const DWORD error = GetLastError();
        EXPECT_TRUE(error == 0xE0000003 || error == 1460) << error;
        EXPECT_EQ(0u, records[10].addressType);
    });
    printer_.Wait();
    printer_ = ChildProcess();
}

}  // namespace
