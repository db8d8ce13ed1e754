// Address book, access points, network diagnostics, clock, firmware and capabilities on the wire, with a
// language monitor that answers what the test says.
#include <kestrel/sdk.h>
#include <windows.h>

#include <nlohmann/json.hpp>

#include <array>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "recording_monitor.h"

namespace {

using namespace std::string_literals;
using Requests = std::vector<std::string>;

constexpr uint32_t kBadReply = 0xE0000011;
constexpr uint32_t kUnexpectedReply = 0xE0000012;
const std::string kSpeedDial = "DeviceSettings.AddressBook.SpeedDialRecords.NamedSingleEntry";
const std::string kOneTouch = "DeviceSettings.AddressBook.OneTouchDialRecords.NamedSingleEntry";

class Device : public InstalledPrinter {
  protected:
    void WithPrinter(const std::function<void()>& body) {
        InstalledPrinter::WithPrinter([&] {
            uint8_t value = 0;
            GetFaxRedials(&value, kLong);  // announces the time-out, so that only the requests follow
            monitor_.Requests();
            body();
        });
    }
    // The requests but for announcements: each of the shrinking time-outs of a list has one.
    Requests Sent() {
        Requests sent = monitor_.Requests();
        std::erase_if(sent, [](const std::string& text) { return text.starts_with("ZRTimeoutParam"); });
        return sent;
    }

    RecordingMonitor monitor_;
};

TEST_F(Device, Quick_dial_records_are_read_field_by_field_and_cut_to_their_fields) {
    monitor_.AnswerTo("[3].AddressType", "0000,X=Email;");
    monitor_.AnswerTo("[3].Name", "0000,X=" + std::string(45, 'n') + ";");
    monitor_.AnswerTo("[3].Address", "0000,X=" + std::string(60, 'a') + ";");
    monitor_.AnswerTo("[7].AddressType", "0000,X=(null);");
    monitor_.Answer("0000,X=(null);");
    WithPrinter([&] {
        Guarded<KestrelQuickDial, 1> out;
        EXPECT_TRUE(GetQuickDialButton(3, out.records, kLong));
        EXPECT_EQ(
            (Requests{kOneTouch + "[3].AddressType?", kOneTouch + "[3].Name?", kOneTouch + "[3].Address?"}),
            Sent());
        EXPECT_EQ(2u, out.records[0].addressType);
        EXPECT_EQ(WideText(39, TEXT('n')), Text(out.records[0].name));
        EXPECT_EQ(WideText(49, TEXT('a')), Text(out.records[0].address));
        EXPECT_TRUE(GetQuickDialButton(7, out.records, kLong)) << "the device judges the index";
        EXPECT_EQ(0u, out.records[0].addressType);
        EXPECT_EQ(WideText(TEXT("(null)")), Text(out.records[0].name)) << "copied as it comes";
    });
}

TEST_F(Device, A_speed_dial_list_stops_at_the_first_record_that_cannot_be_read) {
    monitor_.AnswerTo("[7].AddressType", "0000,X=Telegraph;");
    monitor_.AnswerTo(".AddressType", "0000,X=Fax;");
    monitor_.Answer("0000,X=1\x1d;");
    WithPrinter([&] {
        Guarded<KestrelQuickDial, KESTREL_SPEED_DIAL_RECORDS> out;
        EXPECT_FALSE(GetQuickDialNumbers(out.records, kLong));
        EXPECT_EQ(87u, GetLastError());
        EXPECT_EQ(22u, Sent().size());
        EXPECT_EQ(1u, out.records[6].addressType);
        EXPECT_EQ(WideText(TEXT("1;")), Text(out.records[6].address));
        const KestrelQuickDial empty = {};
        for (int i = 7; i < KESTREL_SPEED_DIAL_RECORDS; ++i)
            EXPECT_EQ(0, std::memcmp(&empty, &out.records[i], sizeof(empty))) << i;
    });
}

TEST_F(Device, The_time_out_of_a_list_is_that_of_the_whole_list) {
    monitor_.AnswerTo(".AddressType", "0000,X=Fax;");
    monitor_.SetDelay(60);
    WithPrinter([&] {
        KestrelQuickDial records[KESTREL_ONE_TOUCH_RECORDS];
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(GetQuickDialButtons(records, 800));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2 * 800 + 250));
        EXPECT_LT(Sent().size(), 15u);
    });
}

TEST_F(Device, A_list_of_destinations_is_one_request_with_its_texts_escaped) {
    WithPrinter([&] {
        std::array<KestrelQuickDial, KESTREL_SPEED_DIAL_RECORDS> list = {};
        list[0] = {1, TEXT("A;B&C"), TEXT("555.1")};
        EXPECT_TRUE(SetQuickDialNumbers(list.data(), kLong)) << GetLastError();
        const Requests sent = Sent();
        ASSERT_EQ(1u, sent.size());
        std::string expected;
        for (int i = 0; i < 60; ++i) {
            const std::string base = kSpeedDial + "[" + std::to_string(i) + "]";
            expected += base + (i == 0 ? ".AddressType=Fax;"s : ".AddressType=(null);"s);
            expected += base + (i == 0 ? ".Name=A\x1d"
                                         "B\x1a"
                                         "C;"s
                                       : ".Name=;"s);
            expected += base + (i == 0 ? ".Address=555\x1c"
                                         "1;"s
                                       : ".Address=;"s);
        }
        EXPECT_EQ(expected, sent[0]);
        list[59].addressType = 3;
        EXPECT_FALSE(SetQuickDialNumbers(list.data(), kLong));
        EXPECT_EQ(87u, GetLastError());
        EXPECT_TRUE(Sent().empty());
        list[2].addressType = 77;
        EXPECT_FALSE(SetQuickDialButtons(list.data(), kLong));
        EXPECT_EQ(2u, Sent().size()) << "those before the wrong one";
    });
}

TEST_F(Device, Access_points_are_read_item_by_item) {
    const std::string base = "DeviceNetwork.WiFiAccessPoints.GetAccessPoints[";
    const auto item = [&](const std::string& rest) { return base + rest; };
    monitor_.Answer("101," + item("0].MacAddr#6=\x00\x1B\x2C\x3D\x4E\x5F&"s) +
                    item("0].SignalStrength=70000&") + item("0].BcnInterval=100&") +
                    item("0].CapInfo=0x31&") + item("0].SSID=" + std::string(40, 's') + "&") +
                    item("0].Channel=11&") + item("0].Encryption=-1&") + item("29].MacAddr#5=;;;;;&") +
                    item("29].SSID=(null)&") + item("29].Channel=x;"));
    WithPrinter([&] {
        Guarded<KestrelAccessPoint, KESTREL_MAX_ACCESS_POINTS> out;
        EXPECT_TRUE(GetAccessPoints(out.records, kLong)) << GetLastError();
        EXPECT_EQ(101u, GetLastResponseNum());
        const KestrelAccessPoint& first = out.records[0];
        EXPECT_EQ(WideText(TEXT("00:1B:2C:3D:4E:5F")), Text(first.macAddress));
        EXPECT_EQ(4464, first.signalStrength);
        EXPECT_EQ(100, first.beaconInterval);
        EXPECT_EQ(0x31, first.capabilities);
        EXPECT_EQ(WideText(32, TEXT('s')), Text(first.ssid));
        EXPECT_EQ(11u, first.channel);
        EXPECT_EQ(0xFFFFFFFFu, first.encryption);
        const KestrelAccessPoint empty = {};
        EXPECT_EQ(0, std::memcmp(&empty, &out.records[29], sizeof(empty)))
            << "malformed values leave no trace";
    });
}

TEST_F(Device, Lists_that_are_none_or_name_foreign_records_fail_and_keep_what_was_read) {
    struct Case {
        const char* reply;
        uint32_t error;
        uint32_t number;
        kestrel_char firstLetter;  // of the first host name
    };
    const Case cases[] = {
        {"101,Hosts[0]=(null);", 0, 101, 0},
        {"101,;", 0, 101, 0},
        {"101,Hosts[0]=one&Hosts[9]=two;", 0, 101, 'o'},
        {"101,Hosts[0]=one&Hosts[10]=two;", kUnexpectedReply, 101, 'o'},
        {"101,Hosts[0]=one&Hosts=two;", kUnexpectedReply, 101, 'o'},
        {"100,Hosts[0]=one;", kUnexpectedReply, 100, 0},
        {"Hosts[0]=one;", kBadReply, 0, 0},
    };
    WithPrinter([&] {
        for (const Case& row : cases) {
            SCOPED_TRACE(row.reply);
            monitor_.Answer(row.reply);
            Guarded<KestrelHost, KESTREL_MAX_HOSTS> out;
            EXPECT_EQ(row.error == 0, GetMDNSHostList(out.records, kLong) != 0);
            EXPECT_EQ(row.error, GetLastError());
            EXPECT_EQ(row.number, GetLastResponseNum());
            EXPECT_EQ(row.firstLetter, out.records[0].name[0]);
        }
        monitor_.Answer("101,A[0].Colour=red;");
        KestrelAccessPoint points[KESTREL_MAX_ACCESS_POINTS];
        EXPECT_FALSE(GetAccessPoints(points, kLong));
        EXPECT_EQ(kUnexpectedReply, GetLastError());
    });
}

TEST_F(Device, A_ping_is_set_up_with_one_request) {
    WithPrinter([&] {
        EXPECT_TRUE(SetPing(0x0100000A, 4, 2, kLong));
        EXPECT_EQ(Requests{"DeviceNetwork.Network.SetPing.Ip_Addr[0]#4=\x0A\x00\x00\x01;"s +
                           "DeviceNetwork.Network.SetPing.NumOfPing=4;"
                           "DeviceNetwork.Network.SetPing.TimeoutOfPing=2;"},
                  Sent());
        EXPECT_TRUE(StartSearchForAccessPoints(kLong));
        EXPECT_EQ(Requests{"DeviceNetwork.WiFiAccessPoints.SearchAccessPoints=YES;"}, Sent());
    });
}

TEST_F(Device, The_clock_is_read_as_five_items_in_any_order) {
    struct Case {
        std::string reply;
        bool read;
        std::array<uint32_t, 5> time;
    };
    const std::string key = "DeviceSettings.System.Time.";
    const Case cases[] = {
        {"0," + key + "Minute=5&" + key + "Year=2012&" + key + "Hour=14&" + key + "Day=9&" + key + "Month=3;",
         true,
         {2012, 3, 9, 14, 5}},
        {"0," + key + "Year=2012&" + key + "Month=3&" + key + "Day=9&" + key + "Hour=14;", false, {}},
        {"0," + key + "Year=2012&" + key + "Month=x&" + key + "Day=9&" + key + "Hour=1&" + key + "Minute=5;",
         false,
         {2012, 0, 0, 0, 0}},
        {"0," + key + "Year=2012&" + key + "Era=3&" + key + "Day=9&" + key + "Hour=1&" + key + "Minute=5;",
         false,
         {2012, 0, 0, 0, 0}},
    };
    WithPrinter([&] {
        for (const Case& row : cases) {
            SCOPED_TRACE(row.reply);
            monitor_.Answer(row.reply);
            std::array<uint32_t, 5> out = {9, 9, 9, 9, 9};
            EXPECT_EQ(row.read, GetDeviceTime(&out[0], &out[1], &out[2], &out[3], &out[4], kLong) != 0);
            EXPECT_EQ(0u, GetLastError());
            EXPECT_EQ(row.time, out);
        }
    });
}

TEST_F(Device, The_clock_is_set_with_one_request_and_asked_for_its_year) {
    const std::string key = "DeviceSettings.System.Time.";
    monitor_.AnswerTo("Year?", "0,X=1999;");
    WithPrinter([&] {
        EXPECT_TRUE(SetDeviceTime(2012, 3, 9, 14, 5, kLong));
        EXPECT_EQ((Requests{key + "Year=2012;" + key + "Month=3;" + key + "Day=9;" + key + "Hour=14;" + key +
                                "Minute=5;",
                            key + "Year?"}),
                  Sent());
        monitor_.SetDelay(250);
        EXPECT_FALSE(SetDeviceTime(2012, 3, 9, 14, 5, 260));
        const uint32_t error = GetLastError();
        EXPECT_TRUE(error == 1460 || error == 0xE0000003) << error;
    });
}

TEST_F(Device, The_clock_of_this_computer_reaches_the_printer_with_its_zone_and_identity) {
    struct Zone {
        char setting[24];
        int64_t offsetMinutes;  // in winter
        bool observes;
        const char* digits;
    };
    Zone zones[] = {{"TZ=JST-9", 540, false, "021C"}, {"TZ=EST5", -300, false, "112C"}};
    WithPrinter([&] {
        std::string identity;
        for (Zone& zone : zones) {
            putenv(zone.setting);
            const int64_t before = std::time(nullptr);
            EXPECT_TRUE(SetCurrentTimeRTC(kLong)) << GetLastError();
            const Requests sent = Sent();
            ASSERT_EQ(1u, sent.size());
            const std::string prefix = "DeviceSettings.System.RTCTime=";
            ASSERT_EQ(prefix.size() + 28 + 1, sent[0].size()) << sent[0];
            const std::string text = sent[0].substr(prefix.size(), 28);
            if (identity.empty()) identity = text.substr(0, 16);
            EXPECT_EQ(identity, text.substr(0, 16)) << "the identity is kept";
            const int64_t seconds = std::stoll(text.substr(16, 8), nullptr, 16);
            EXPECT_NEAR(static_cast<double>(before + zone.offsetMinutes * 60 - 946684800),
                        static_cast<double>(seconds), 5);
            EXPECT_EQ(zone.digits, text.substr(24));
        }
        EXPECT_NE("0000000000000000", identity);
        monitor_.Answer("0,X=" + std::string(40, 'F') + ";");
        Guarded<kestrel_char, 29> out;
        EXPECT_TRUE(GetCurrentTimeRTC(out.records, kLong));
        EXPECT_EQ(WideText(28, TEXT('F')), Text(out.records));
    });
}

class Identity : public Device {
  protected:
    static constexpr const char* kRequest = "DeviceSettings.System.RTCTime=";

    // The identity that is sent with the clock.
    std::string Sent16() {
        EXPECT_TRUE(SetCurrentTimeRTC(kLong)) << GetLastError();
        const Requests sent = Sent();
        return sent.empty() ? std::string() : sent.back().substr(std::strlen(kRequest), 16);
    }
    // What the configuration says of the place where it is kept.
    void KeepIdentityAt(const std::string& place) {
        const CommandResult setup = RunClient({"setup", "--json"});
        const std::string file = nlohmann::json::parse(setup.output).at("configuration").get<std::string>();
        std::ifstream stream(file, std::ios::binary);
        std::string text((std::istreambuf_iterator<char>(stream)), {});
        const size_t section = text.find("[Host ID]");
        const size_t begin = text.find("RegDir", section);
        ASSERT_NE(std::string::npos, begin);
        text.replace(begin, text.find('\n', begin) - begin, "RegDir=" + place);
        std::ofstream(file, std::ios::binary) << text;
    }
};

TEST_F(Identity, One_of_another_form_is_replaced_and_then_kept_in_little_endian_order) {
    KeepIdentityAt(".DEFAULT\\Software\\Kestrel Tests");
    HKEY key = nullptr;
    ASSERT_EQ(0, RegCreateKeyExW(HKEY_USERS, TEXT(".DEFAULT\\Software\\Kestrel Tests"), 0, nullptr, 0,
                                 KEY_ALL_ACCESS, nullptr, &key, nullptr));
    struct Stored {
        DWORD type;
        DWORD size;
        bool kept;
    };
    const BYTE bytes[] = {1, 2, 3, 4, 5, 6, 7, 0xAB, 9};
    WithPrinter([&] {
        for (const Stored row : {Stored{REG_BINARY, 8, true}, Stored{REG_BINARY, 4, false},
                                 Stored{REG_BINARY, 9, false}, Stored{REG_SZ, 8, false}}) {
            RegSetValueExW(key, TEXT("HostID"), 0, row.type, bytes, row.size);
            const std::string sent = Sent16();
            EXPECT_EQ(row.kept, sent == "AB07060504030201") << row.size;
            EXPECT_EQ(sent, Sent16());
        }
    });
    RegCloseKey(key);
}

TEST_F(Identity, One_that_cannot_be_kept_is_another_at_each_call) {
    KeepIdentityAt("\\Not a key");
    WithPrinter([&] { EXPECT_NE(Sent16(), Sent16()); });
}

TEST_F(Device, Firmware_versions_come_within_one_time_out) {
    monitor_.AnswerTo("Lagoon", "0,X=0x10;");
    monitor_.AnswerTo("Customer", "0,X=7;");
    monitor_.AnswerTo("Printer", "0,X=ZR 1;");
    WithPrinter([&] {
        uint32_t lagoon = 9;
        uint32_t customer = 9;
        Guarded<kestrel_char, 64> out;
        EXPECT_TRUE(GetFWVersion(&lagoon, &customer, out.records, kLong));
        EXPECT_EQ(16u, lagoon);
        EXPECT_EQ(7u, customer);
        EXPECT_EQ(WideText(TEXT("ZR 1")), Text(out.records));
        // The time-out is announced before each query, so two replies of six come in time.
        monitor_.SetDelay(300);
        EXPECT_FALSE(GetFWVersion(&lagoon, &customer, out.records, 1000));
        EXPECT_EQ(16u, lagoon);
        EXPECT_EQ(0u, out.records[0]);
    });
}

TEST_F(Device, Capabilities_are_read_as_they_are_told) {
    struct Case {
        const char* reply;
        bool upgrade;
        uint32_t version;
    };
    const Case cases[] = {{"0,X=OPL;", true, 'O'},
                          {"0,X=opl;", false, 'o'},
                          {"0,X=;", false, 0},
                          {"0,X=\xE9;", false, 0xFFFFFFE9}};
    WithPrinter([&] {
        for (const Case& row : cases) {
            SCOPED_TRACE(row.reply);
            monitor_.Answer(row.reply);
            uint8_t capable = 7;
            uint32_t version = 0;
            EXPECT_TRUE(GetCapFWUpgrade(&capable, kLong));
            EXPECT_EQ(row.upgrade, capable != 0);
            EXPECT_TRUE(GetCapRBNVer(&version, kLong));
            EXPECT_EQ(row.version, version);
        }
        EXPECT_EQ(
            "DeviceCapabilities.HWConfiguration.RBNVersion?"
            "DeviceCapabilities.HWConfiguration.UpgradeFWCapabilities?",
            Sent().back());
        monitor_.Answer("0,X;");
        uint32_t version = 0;
        EXPECT_FALSE(GetCapRBNVer(&version, kLong));
        EXPECT_EQ(32u, version);
    });
}

TEST_F(Device, The_capability_block_must_hold_what_is_asked_for) {
    struct Case {
        uint32_t ownSize;
        uint32_t asked;
        bool read;
    };
    const Case cases[] = {{40, 16, false}, {12, 16, true}, {40, 40, true}, {0, 16, false},
                          {12, 41, false}, {12, 0, false}, {1, 3, false}};
    WithPrinter([&] {
        for (const Case& row : cases) {
            std::string block(40, 'c');
            std::memcpy(block.data(), &row.ownSize, 4);
            monitor_.Answer("0,X#40=" + block + ";");
            Guarded<uint8_t, 48> out;
            EXPECT_EQ(row.read, GetCapabilities(out.records, row.asked, 1) != 0)
                << row.ownSize << ' ' << row.asked;
            if (row.read) {
                EXPECT_EQ(row.asked, out.records[0]);
                EXPECT_EQ('c', out.records[4]);
            }
            EXPECT_EQ(0xA5, out.records[row.asked]) << "behind the size";
        }
        monitor_.Answer("0,X=1;");
        uint8_t buffer[4];
        EXPECT_FALSE(GetCapabilities(buffer, 4, 1));
    });
}

TEST_F(Device, A_service_is_configured_only_where_the_printer_names_it) {
    const std::string key = "DeviceSettings.System.Configuration";
    WithPrinter([&] {
        uint8_t configured = 7;
        monitor_.Answer("0," + key + ".isPennantConfigured=TRUE;");
        EXPECT_FALSE(GetGCPConfigured(&configured, kLong));
        EXPECT_EQ(0u, GetLastError());
        EXPECT_EQ(0, configured);
        EXPECT_EQ(Requests{key + "?"}, Sent());
        EXPECT_TRUE(GetPennantConfigured(&configured, kLong));
        EXPECT_EQ(1, configured);
        EXPECT_EQ((Requests{key + "?", key + ".isPennantConfigured?"}), Sent());
    });
}

TEST_F(Device, An_upgrade_is_judged_by_its_response_number) {
    struct Case {
        const char* reply;
        bool done;
        uint32_t error;
        uint32_t number;
    };
    const Case cases[] = {{"101,X;", true, 0, 101},
                          {"100000,X;", true, 0, 100000},
                          {"100,X;", false, 0, 100},
                          {"X;", false, kBadReply, 0}};
    const std::string file = (home_ / "firmware.bin").string();
    std::ofstream(file) << "image";
    const WideText path = Widened(file);
    monitor_.AnswerTo("UpgradeFWCapabilities", "0,X=OPL;");
    WithPrinter([&] {
        for (const Case& row : cases) {
            SCOPED_TRACE(row.reply);
            monitor_.Answer(row.reply);
            EXPECT_EQ(row.done, UpgradeFW(path.c_str()) != 0);
            EXPECT_EQ(row.error, GetLastError());
            EXPECT_EQ(row.number, GetLastResponseNum());
            EXPECT_EQ(row.done && row.number == 101, RefreshFWCapabilities(kLong) != 0);
        }
        EXPECT_TRUE(
            Sent()[1].ends_with("firmware\x1c"
                                "bin;"));
        EXPECT_FALSE(UpgradeFW((path + TEXT("x")).c_str()));
        EXPECT_EQ(2u, GetLastError());
        EXPECT_TRUE(Sent().empty());
    });
}

TEST_F(Device, An_upgrade_is_not_tried_on_a_printer_that_cannot_do_it) {
    monitor_.Answer("0,X=USB;");
    const std::string file = (home_ / "firmware.bin").string();
    std::ofstream(file) << "image";
    WithPrinter([&] {
        EXPECT_FALSE(UpgradeFW(Widened(file).c_str()));
        EXPECT_EQ(50u, GetLastError());
        EXPECT_EQ(1u, Sent().size());
    });
}

TEST_F(Device, Lock_and_unlock_follow_the_response_number) {
    WithPrinter([&] {
        monitor_.Answer("2,X;");
        EXPECT_TRUE(Lock(kLong));
        EXPECT_FALSE(SelectPrinter(kPrinter));
        EXPECT_EQ(212u, GetLastError());
        monitor_.Answer("101,X;");
        EXPECT_TRUE(EnableCache(1));
        EXPECT_FALSE(Unlock(1200)) << "asked again once a second, in vain";
        EXPECT_EQ(1460u, GetLastError());
        EXPECT_TRUE(SelectPrinter(kPrinter)) << "unlocked all the same";
        monitor_.Answer("3,X;");
        EXPECT_TRUE(Unlock(kLong));
        EXPECT_EQ(3u, GetLastResponseNum());
        EXPECT_FALSE(Lock(kLong));
        EXPECT_EQ(kUnexpectedReply, GetLastError());
        EXPECT_FALSE(EnableCache(0));
        EXPECT_EQ(0u, GetLastError());
        monitor_.Answer("X;");
        EXPECT_FALSE(Lock(kLong));
        EXPECT_EQ(kBadReply, GetLastError());
        EXPECT_TRUE(Cancel());
        const Requests sent = Sent();
        EXPECT_EQ("LockPrinter?", sent.at(0));
        EXPECT_EQ("ZRCache=TRUE;", sent.at(1));
        EXPECT_EQ("UnlockPrinter?", sent.at(2));
        EXPECT_EQ("UnlockPrinter?", sent.at(3));
        EXPECT_EQ("ZRCache=FALSE;", sent.at(sent.size() - 3));
        EXPECT_EQ("ZRCancel?", sent.back());
    });
}

}  // namespace
