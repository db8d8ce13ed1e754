// Address book, access points, network diagnostics, clock, firmware and capabilities on the wire, with a
// language monitor that answers what the test says.
#include <kestrel/sdk.h>
#include <windows.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <regex>
#include <set>

#include "recording_monitor.h"

namespace {

using namespace std::string_literals;

// Whether nothing has been written to it.
template <typename Record>
bool IsZero(const Record& record) {
    const Record zeros = {};
    return std::memcmp(&zeros, &record, sizeof(zeros)) == 0;
}

class Device : public Wire {
  protected:
    // The text that the printer's clock is set with from this computer's.
    std::string SentClock() {
        EXPECT_EQ(kDone, Ended(SetCurrentTimeRTC(kLong)));
        static const std::string prefix = "DeviceSettings.System.RTCTime=";
        const Requests sent = Sent();
        if (sent.size() != 1 || !sent[0].starts_with(prefix)) return "not a request";
        return sent[0].substr(prefix.size(), sent[0].size() - prefix.size() - 1);
    }
};

TEST_F(Device, Quick_dial_records_are_read_field_by_field_and_cut_to_their_fields) {
    monitor_.Answer("0000,X=(null);");
    monitor_.AnswerTo("[3].AddressType", "0000,X=Email;");
    monitor_.AnswerTo("[3].Name", "0000,X=" + std::string(45, 'n') + ";");
    monitor_.AnswerTo("[3].Address?", "0000,X=" + std::string(60, 'a') + ";");
    WithPrinter([&] {
        Guarded<KestrelQuickDial, 1> out;
        EXPECT_EQ(kDone, Ended(GetQuickDialButton(3, out.records, kLong)));
        const std::string key = "DeviceSettings.AddressBook.OneTouchDialRecords.NamedSingleEntry[3].";
        EXPECT_EQ((Requests{key + "AddressType?", key + "Name?", key + "Address?"}), Sent());
        EXPECT_EQ(2u, out.records[0].addressType);
        EXPECT_EQ(WideText(39, TEXT('n')), Text(out.records[0].name));
        EXPECT_EQ(WideText(49, TEXT('a')), Text(out.records[0].address));
        EXPECT_EQ(kDone, Ended(GetQuickDialButton(7, out.records, kLong))) << "the device judges the index";
        EXPECT_EQ(0u, out.records[0].addressType);
        EXPECT_EQ(WideText(TEXT("(null)")), Text(out.records[0].name)) << "copied as it comes";
    });
}

TEST_F(Device, A_speed_dial_list_stops_at_the_first_record_that_cannot_be_read) {
    monitor_.Answer("0000,X=1\x1d;");
    monitor_.AnswerTo(".AddressType", "0000,X=Fax;");
    monitor_.AnswerTo("[7].AddressType", "0000,X=Telegraph;");
    WithPrinter([&] {
        Guarded<KestrelQuickDial, KESTREL_SPEED_DIAL_RECORDS> out;
        EXPECT_EQ(87u, Ended(GetQuickDialNumbers(out.records, kLong)));
        EXPECT_EQ(22u, Sent().size());
        EXPECT_EQ(1u, out.records[6].addressType);
        EXPECT_EQ(WideText(TEXT("1;")), Text(out.records[6].address));
        for (int i = 7; i < KESTREL_SPEED_DIAL_RECORDS; ++i)
            EXPECT_TRUE(IsZero(out.records[i])) << i;
    });
}

TEST_F(Device, The_time_out_of_a_list_is_that_of_the_whole_list) {
    monitor_.AnswerTo(".AddressType", "0000,X=Fax;");
    monitor_.SetDelay(60);
    WithPrinter([&] {
        KestrelQuickDial records[KESTREL_ONE_TOUCH_RECORDS];
        const auto start = Clock::now();
        EXPECT_FALSE(GetQuickDialButtons(records, 800));
        EXPECT_LT(Clock::now() - start, milliseconds(2 * 800 + 250));
        EXPECT_LT(Sent().size(), 15u);
    });
}

TEST_F(Device, A_list_of_destinations_is_one_request_with_its_texts_escaped) {
    WithPrinter([&] {
        std::array<KestrelQuickDial, KESTREL_SPEED_DIAL_RECORDS> list = {};
        list[0] = {1, TEXT("A;B&C"), TEXT("555.1")};
        EXPECT_EQ(kDone, Ended(SetQuickDialNumbers(list.data(), kLong)));
        std::string expected;
        for (int i = 0; i < KESTREL_SPEED_DIAL_RECORDS; ++i) {
            const std::string key =
                "DeviceSettings.AddressBook.SpeedDialRecords.NamedSingleEntry[" + std::to_string(i) + "].";
            expected += key + "AddressType=" + (i == 0 ? "Fax;" : "(null);");
            expected += key + "Name=" + (i == 0 ? "A\x1d"s + "B\x1a"s + "C;" : ";");
            expected += key + "Address=" + (i == 0 ? "555\x1c"s + "1;" : ";");
        }
        EXPECT_EQ(Requests{expected}, Sent());
        list[59].addressType = 3;
        EXPECT_EQ(87u, Ended(SetQuickDialNumbers(list.data(), kLong)));
        EXPECT_TRUE(Sent().empty());
        list[2].addressType = 77;
        EXPECT_FALSE(SetQuickDialButtons(list.data(), kLong));
        EXPECT_EQ(2u, Sent().size()) << "those before the wrong one";
    });
}

TEST_F(Device, Access_points_are_read_item_by_item_and_malformed_ones_leave_no_trace) {
    std::string reply = "101,";
    for (const std::string& item :
         {"0].MacAddr#6=\x00\x1B\x2C\x3D\x4E\x5F"s, "0].SignalStrength=70000"s, "0].BcnInterval=100"s,
          "0].CapInfo=0x31"s, "0].SSID="s + std::string(40, 's'), "0].Channel=11"s, "0].Encryption=-1"s,
          "29].MacAddr#5=;;;;;"s, "29].SSID=(null)"s, "29].Channel=x"s})
        reply += "DeviceNetwork.WiFiAccessPoints.GetAccessPoints[" + item + "&";
    reply.back() = ';';
    monitor_.Answer(reply);
    WithPrinter([&] {
        Guarded<KestrelAccessPoint, KESTREL_MAX_ACCESS_POINTS> out;
        EXPECT_EQ(kDone, Ended(GetAccessPoints(out.records, kLong)));
        EXPECT_EQ(101u, GetLastResponseNum());
        const KestrelAccessPoint& first = out.records[0];
        EXPECT_EQ(WideText(TEXT("00:1B:2C:3D:4E:5F")), Text(first.macAddress));
        EXPECT_EQ(4464, first.signalStrength);
        EXPECT_EQ(100, first.beaconInterval);
        EXPECT_EQ(0x31, first.capabilities);
        EXPECT_EQ(WideText(32, TEXT('s')), Text(first.ssid));
        EXPECT_EQ(11u, first.channel);
        EXPECT_EQ(0xFFFFFFFFu, first.encryption);
        EXPECT_TRUE(IsZero(out.records[29]));
        monitor_.Answer("101,A[0].Colour=red;");
        EXPECT_EQ(kUnexpectedReply, Ended(GetAccessPoints(out.records, kLong)));
    });
}

TEST_F(Device, Lists_that_are_none_or_name_foreign_records_fail_and_keep_what_was_read) {
    const struct {
        const char* reply;
        uint32_t ends;
        uint32_t number;
        kestrel_char firstLetter;  // of the first host name
    } rows[] = {
        {"101,Hosts[0]=(null);", kDone, 101, 0},
        {"101,;", kDone, 101, 0},
        {"101,Hosts[0]=one&Hosts[9]=two;", kDone, 101, 'o'},
        {"101,Hosts[0]=one&Hosts[10]=two;", kUnexpectedReply, 101, 'o'},
        {"101,Hosts[0]=one&Hosts=two;", kUnexpectedReply, 101, 'o'},
        {"100,Hosts[0]=one;", kUnexpectedReply, 100, 0},
        {"Hosts[0]=one;", kBadReply, 0, 0},
    };
    WithPrinter([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.reply);
            monitor_.Answer(row.reply);
            Guarded<KestrelHost, KESTREL_MAX_HOSTS> out;
            EXPECT_EQ(row.ends, Ended(GetMDNSHostList(out.records, kLong)));
            EXPECT_EQ(row.number, GetLastResponseNum());
            EXPECT_EQ(row.firstLetter, out.records[0].name[0]);
        }
    });
}

TEST_F(Device, The_clock_is_read_as_five_items_in_any_order) {
    struct Case {
        std::vector<const char*> items;
        uint32_t ends;
        std::array<uint32_t, 5> time;
    };
    const Case cases[] = {
        {{"Minute=5", "Year=2012", "Hour=14", "Day=9", "Month=3"}, kDone, {2012, 3, 9, 14, 5}},
        {{"Year=2012", "Month=3", "Day=9", "Hour=14"}, 0, {}},
        {{"Year=2012", "Month=x", "Day=9", "Hour=1", "Minute=5"}, 0, {2012}},
        {{"Year=2012", "Era=3", "Day=9", "Hour=1", "Minute=5"}, 0, {2012}},
    };
    WithPrinter([&] {
        for (const Case& row : cases) {
            std::string reply = "0,";
            for (const char* item : row.items)
                reply += "DeviceSettings.System.Time."s + item + "&";
            reply.back() = ';';
            SCOPED_TRACE(reply);
            monitor_.Answer(reply);
            std::array<uint32_t, 5> out = {9, 9, 9, 9, 9};
            EXPECT_EQ(row.ends, Ended(GetDeviceTime(&out[0], &out[1], &out[2], &out[3], &out[4], kLong)));
            EXPECT_EQ(row.time, out);
        }
    });
}

TEST_F(Device, The_clock_of_this_computer_reaches_the_printer_with_its_zone_and_identity) {
    struct Zone {
        char setting[24];
        int64_t offsetMinutes;  // in winter
        const char* digits;
    };
    Zone zones[] = {{"TZ=JST-9", 540, "021C"}, {"TZ=EST5", -300, "112C"}};
    WithPrinter([&] {
        std::set<std::string> identities;
        for (Zone& zone : zones) {
            putenv(zone.setting);
            const int64_t expected = std::time(nullptr) + zone.offsetMinutes * 60 - 946684800;
            const std::string text = SentClock();
            ASSERT_EQ(28u, text.size()) << text;
            identities.insert(text.substr(0, 16));
            EXPECT_LE(std::abs(std::stoll(text.substr(16, 8), nullptr, 16) - expected), 5);
            EXPECT_EQ(zone.digits, text.substr(24));
        }
        EXPECT_EQ(1u, identities.size()) << "it is kept";
        EXPECT_FALSE(identities.contains("0000000000000000"));
    });
}

class Identity : public Device {
  protected:
    // The one that is sent with the clock.
    std::string SentIdentity() { return SentClock().substr(0, 16); }

    void KeepIdentityAt(const std::string& place) {
        const std::string configuration = setup_.at("configuration");
        static const std::regex setting("(\\[Host ID\\][^[]*RegDir *=)[^\r\n]*");
        const std::string text = FileText(configuration);
        std::ofstream(configuration, std::ios::binary) << std::regex_replace(text, setting, "$1" + place);
    }
};

TEST_F(Identity, One_of_another_form_is_replaced_and_then_kept_in_little_endian_order) {
    KeepIdentityAt(".DEFAULT\\Software\\Kestrel Tests");
    HKEY key = nullptr;
    ASSERT_EQ(0, RegCreateKeyW(HKEY_USERS, TEXT(".DEFAULT\\Software\\Kestrel Tests"), &key));
    const BYTE bytes[] = {1, 2, 3, 4, 5, 6, 7, 0xAB, 9};
    const struct {
        DWORD type;
        DWORD size;
        bool isKept;
    } rows[] = {{REG_BINARY, 8, true}, {REG_BINARY, 4, false}, {REG_BINARY, 9, false}, {REG_SZ, 8, false}};
    WithPrinter([&] {
        for (const auto& row : rows) {
            RegSetValueExW(key, TEXT("HostID"), 0, row.type, bytes, row.size);
            const std::string sent = SentIdentity();
            EXPECT_EQ(row.isKept, sent == "AB07060504030201") << row.size;
            EXPECT_EQ(sent, SentIdentity());
        }
    });
    RegCloseKey(key);
}

TEST_F(Identity, One_that_cannot_be_kept_is_another_at_each_call) {
    KeepIdentityAt("\\Not a key");
    WithPrinter([&] { EXPECT_NE(SentIdentity(), SentIdentity()); });
}

TEST_F(Device, Firmware_versions_come_within_one_time_out) {
    monitor_.AnswerTo("Lagoon", "0,X=0x10;");
    monitor_.AnswerTo("Customer", "0,X=7;");
    monitor_.AnswerTo("Printer", "0,X=ZR 1;");
    WithPrinter([&] {
        uint32_t lagoon = 9;
        uint32_t customer = 9;
        Guarded<kestrel_char, 64> out;
        EXPECT_EQ(kDone, Ended(GetFWVersion(&lagoon, &customer, out.records, kLong)));
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
    const struct {
        const char* reply;
        bool upgrade;
        uint32_t version;
    } rows[] = {{"0,X=OPL;", true, 'O'},
                {"0,X=opl;", false, 'o'},
                {"0,X=;", false, 0},
                {"0,X=\xE9;", false, 0xFFFFFFE9}};
    WithPrinter([&] {
        uint8_t capable = 7;
        uint32_t version = 0;
        for (const auto& row : rows) {
            SCOPED_TRACE(row.reply);
            monitor_.Answer(row.reply);
            EXPECT_EQ(kDone, Ended(GetCapFWUpgrade(&capable, kLong)));
            EXPECT_EQ(row.upgrade, capable != 0);
            EXPECT_EQ(kDone, Ended(GetCapRBNVer(&version, kLong)));
            EXPECT_EQ(row.version, version);
        }
        const std::string key = "DeviceCapabilities.HWConfiguration.";
        EXPECT_EQ(key + "RBNVersion?" + key + "UpgradeFWCapabilities?", Sent().back());
        monitor_.Answer("0,X;");
        EXPECT_FALSE(GetCapRBNVer(&version, kLong));
        EXPECT_EQ(32u, version);
    });
}

TEST_F(Device, The_capability_block_must_hold_what_is_asked_for) {
    const struct {
        uint32_t ownSize;
        uint32_t asked;
        bool isRead;
    } rows[] = {{40, 16, false}, {12, 16, true}, {40, 40, true}, {0, 16, false},
                {12, 41, false}, {12, 0, false}, {1, 3, false}};
    WithPrinter([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(testing::Message() << row.ownSize << ' ' << row.asked);
            std::string block(40, 'c');
            std::memcpy(block.data(), &row.ownSize, 4);
            monitor_.Answer("0,X#40=" + block + ";");
            Guarded<uint8_t, 48> out;
            EXPECT_EQ(row.isRead, GetCapabilities(out.records, row.asked, 1) != 0);
            if (row.isRead) {
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
    monitor_.Answer("0," + key + ".isPennantConfigured=TRUE;");
    WithPrinter([&] {
        uint8_t configured = 7;
        EXPECT_EQ(0u, Ended(GetGCPConfigured(&configured, kLong)));
        EXPECT_EQ(0, configured);
        EXPECT_EQ(kDone, Ended(GetPennantConfigured(&configured, kLong)));
        EXPECT_EQ(1, configured);
        EXPECT_EQ((Requests{key + "?", key + "?", key + ".isPennantConfigured?"}), Sent());
    });
}

TEST_F(Device, An_upgrade_is_tried_where_it_can_be_done_and_judged_by_its_response_number) {
    const struct {
        const char* reply;
        uint32_t ends;
        uint32_t number;
    } rows[] = {
        {"101,X;", kDone, 101}, {"100000,X;", kDone, 100000}, {"100,X;", 0, 100}, {"X;", kBadReply, 0}};
    const std::string file = (home_ / "firmware.bin").string();
    std::ofstream(file) << "image";
    const WideText path = Widened(file);
    monitor_.AnswerTo("UpgradeFWCapabilities", "0,X=OPL;");
    WithPrinter([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.reply);
            monitor_.Answer(row.reply);
            EXPECT_EQ(row.ends, Ended(UpgradeFW(path.c_str())));
            EXPECT_EQ(row.number, GetLastResponseNum());
            EXPECT_EQ(row.number == 101, RefreshFWCapabilities(kLong) != 0);
        }
        EXPECT_TRUE(Sent()[1].ends_with("firmware\x1c"s + "bin;"));
        EXPECT_EQ(2u, Ended(UpgradeFW((path + TEXT("x")).c_str())));
        EXPECT_TRUE(Sent().empty());
        monitor_.AnswerTo("UpgradeFWCapabilities", "0,X=USB;");
        EXPECT_EQ(50u, Ended(UpgradeFW(path.c_str())));
        EXPECT_EQ(1u, Sent().size());
    });
}

TEST_F(Device, Lock_and_unlock_follow_the_response_number) {
    struct Case {
        std::function<kestrel_bool()> call;
        const char* reply;
        uint32_t ends;
        std::string request;  // the first one
    };
    const Case cases[] = {
        {[] { return Lock(kLong); }, "2,X;", kDone, "LockPrinter?"},
        {[] { return SelectPrinter(kPrinter); }, "", 212, ""},
        {[] { return EnableCache(1); }, "101,X;", kDone, "ZRCache=TRUE;"},
        {[] { return Unlock(1200); }, "101,X;", 1460, "UnlockPrinter?"},  // and unlocked all the same
        {[] { return SelectPrinter(kPrinter); }, "101,X;", kDone, "ZRPing?"},
        {[] { return Unlock(kLong); }, "3,X;", kDone, "UnlockPrinter?"},
        {[] { return Lock(kLong); }, "3,X;", kUnexpectedReply, "LockPrinter?"},
        {[] { return EnableCache(0); }, "3,X;", 0, "ZRCache=FALSE;"},
        {[] { return Lock(kLong); }, "X;", kBadReply, "LockPrinter?"},
        {[] { return Cancel(); }, "X;", kDone, "ZRCancel?"},
    };
    WithPrinter([&] {
        std::map<std::string, size_t> counts;
        for (const Case& row : cases) {
            SCOPED_TRACE(row.request);
            monitor_.Answer(row.reply);
            EXPECT_EQ(row.ends, Ended(row.call()));
            const Requests sent = Sent();
            EXPECT_EQ(row.request, sent.empty() ? "" : sent[0]);
            counts[row.request] += sent.size();
        }
        EXPECT_EQ(4u, counts["UnlockPrinter?"]) << "asked again once a second";
    });
}

}  // namespace
