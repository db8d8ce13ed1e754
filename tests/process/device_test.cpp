// Address book, access points, network diagnostics, clock, firmware and capabilities on the wire, with a
// language monitor that answers what the test says.
#include <array>
#include <ctime>
#include <regex>
#include <tuple>

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
    // The text that the printer's clock was set with last.
    std::string SentClock() {
        static const std::string prefix = "DeviceSettings.System.RTCTime=";
        const Requests sent = Sent();
        if (sent.empty() || !sent.back().starts_with(prefix)) return "not a request";
        return sent.back().substr(prefix.size(), sent.back().size() - prefix.size() - 1);
    }
};

TEST_F(Device, Quick_dial_records_are_read_field_by_field_and_cut_to_their_fields) {
    monitor_.Answer("0000,X=(null);");
    monitor_.AnswerTo("[3].AddressType", "0000,X=Email;");
    monitor_.AnswerTo("[3].Name", "0000,X=" + std::string(45, 'n') + ";");
    monitor_.AnswerTo("[3].Address?", "0000,X=" + std::string(60, 'a') + ";");
    Guarded<KestrelQuickDial, 1> out;
    const KestrelQuickDial& record = out.records[0];
    EXPECT_EQ(kDone, Ended(GetQuickDialButton(3, out.records, kLong)));
    const std::string key = "DeviceSettings.AddressBook.OneTouchDialRecords.NamedSingleEntry[3].";
    EXPECT_EQ((Requests{key + "AddressType?", key + "Name?", key + "Address?"}), Sent());
    EXPECT_EQ(2u, record.addressType);
    EXPECT_EQ(WideText(39, TEXT('n')), Text(record.name));
    EXPECT_EQ(WideText(49, TEXT('a')), Text(record.address));
    EXPECT_EQ(kDone, Ended(GetQuickDialButton(7, out.records, kLong))) << "the device judges the index";
    EXPECT_EQ(0u, record.addressType);
    EXPECT_EQ(WideText(TEXT("(null)")), Text(record.name)) << "copied as it comes";
    monitor_.Answer("0,X;");
    EXPECT_EQ(kBadReply, Ended(GetQuickDialButton(7, out.records, kLong)));
    EXPECT_TRUE(IsZero(record));
}

TEST_F(Device, A_speed_dial_list_stops_at_the_first_record_that_cannot_be_read) {
    monitor_.Answer("0000,X=1\x1d;");
    monitor_.AnswerTo(".AddressType", "0000,X=Fax;");
    monitor_.AnswerTo("[7].AddressType", "0000,X=Telegraph;");
    Guarded<KestrelQuickDial, KESTREL_SPEED_DIAL_RECORDS> out;
    EXPECT_EQ(87u, Ended(GetQuickDialNumbers(out.records, kLong)));
    EXPECT_EQ(22u, Sent().size());
    EXPECT_EQ(1u, out.records[6].addressType);
    EXPECT_EQ(WideText(TEXT("1;")), Text(out.records[6].address));
    for (int i = 7; i < KESTREL_SPEED_DIAL_RECORDS; ++i)
        EXPECT_TRUE(IsZero(out.records[i])) << i;
}

TEST_F(Device, A_list_of_destinations_is_one_request_with_its_texts_escaped) {
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
    list[2].addressType = 0;
    EXPECT_EQ(kDone, Ended(SetQuickDialButtons(list.data(), kLong)));
    EXPECT_EQ(5u, Sent().size());
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
    for (const auto& [wrong, ends] : {std::pair("101,A[0].Colour=red;", kUnexpectedReply),
                                      {"101,A[30].SSID=x;", kUnexpectedReply},
                                      {"1999,X;", 170}}) {
        monitor_.Answer(wrong);
        EXPECT_EQ(ends, Ended(GetAccessPoints(out.records, kLong))) << wrong;
    }
}

TEST_F(Device, Lists_that_are_none_or_name_foreign_records_fail_and_keep_what_was_read) {
    const std::tuple<const char*, uint32_t, uint32_t, kestrel_char> rows[] = {
        {"101,Hosts[0]=(null);", kDone, 101, 0},
        {"101,;", kDone, 101, 0},
        {"101,Hosts[0]=one&Hosts[9]=two;", kDone, 101, 'o'},
        {"101,Hosts[0]=one&Hosts[10]=two;", kUnexpectedReply, 101, 'o'},
        {"101,Hosts[0]=one&Hosts=two;", kUnexpectedReply, 101, 'o'},
        {"100,Hosts[0]=one;", kUnexpectedReply, 100, 0},
        {"Hosts[0]=one;", kBadReply, 0, 0},
    };
    for (const auto& [reply, ends, number, firstLetter] : rows) {
        SCOPED_TRACE(reply);
        monitor_.Answer(reply);
        Guarded<KestrelHost, KESTREL_MAX_HOSTS> out;
        EXPECT_EQ(ends, Ended(GetMDNSHostList(out.records, kLong)));
        EXPECT_EQ(number, GetLastResponseNum());
        EXPECT_EQ(firstLetter, out.records[0].name[0]);
    }
}

TEST_F(Device, The_clock_is_read_as_five_items_in_any_order) {
    const std::tuple<std::string, uint32_t, std::array<uint32_t, 5>> rows[] = {
        {"T.Minute=5&T.Year=2012&T.Hour=14&T.Day=9&T.Month=3;", kDone, {2012, 3, 9, 14, 5}},
        {"T.Year=2012&T.Month=3&T.Day=9&T.Hour=14;", 0, {}},
        {"T.Year=2012&T.Month=x&T.Day=9&T.Hour=1&T.Minute=5;", 0, {2012}},
        {"T.Year=2012&T.Era=3&T.Day=9&T.Hour=1&T.Minute=5;", 0, {2012}},
    };
    for (const auto& [items, ends, time] : rows) {
        SCOPED_TRACE(items);
        monitor_.Answer("0," + std::regex_replace(items, std::regex("T\\."), "DeviceSettings.System.Time."));
        std::array<uint32_t, 5> out = {9, 9, 9, 9, 9};
        EXPECT_EQ(ends, Ended(GetDeviceTime(&out[0], &out[1], &out[2], &out[3], &out[4], kLong)));
        EXPECT_EQ(time, out);
    }
}

TEST_F(Device, The_clock_of_this_computer_reaches_the_printer_with_its_zone) {
    struct Zone {
        char setting[24];
        int64_t offsetMinutes;  // in winter
        const char* digits;
    };
    Zone zones[] = {{"TZ=JST-9", 540, "021C"}, {"TZ=EST5", -300, "112C"}};
    for (Zone& zone : zones) {
        putenv(zone.setting);
        const int64_t expected = std::time(nullptr) + zone.offsetMinutes * 60 - 946684800;
        EXPECT_EQ(kDone, Ended(SetCurrentTimeRTC(kLong)));
        const std::string text = SentClock();
        ASSERT_EQ(28u, text.size()) << text;
        EXPECT_LE(std::abs(std::stoll(text.substr(16, 8), nullptr, 16) - expected), 5);
        EXPECT_EQ(zone.digits, text.substr(24));
    }
}

TEST_F(Device, The_identity_is_kept_in_little_endian_order_where_the_configuration_says) {
    // Another process each time: a process reads the configuration once.
    const auto identity = [this] {
        EXPECT_EQ(0, RunClient({"-p", "P", "clock", "sync"}).code);
        return SentClock().substr(0, 16);
    };
    const auto keepAt = [this](const std::string& place) {
        const std::string file = setup_.At("configuration").Text();
        static const std::regex setting("(\\[Host ID\\][^[]*RegDir *=)[^\r\n]*");
        const std::string text = std::regex_replace(FileText(file), setting, "$1" + place);
        std::ofstream(file, std::ios::binary) << text;
    };
    EXPECT_NE("0000000000000000", identity());
    EXPECT_EQ(identity(), identity());
    keepAt("\\Not a key");
    EXPECT_NE(identity(), identity()) << "it cannot be kept";
    keepAt(".DEFAULT\\Software\\Kestrel Tests");
    HKEY key = nullptr;
    ASSERT_EQ(0, RegCreateKeyW(HKEY_USERS, TEXT(".DEFAULT\\Software\\Kestrel Tests"), &key));
    const BYTE bytes[] = {1, 2, 3, 4, 5, 6, 7, 0xAB, 9};
    const std::tuple<DWORD, DWORD, bool> rows[] = {
        {REG_BINARY, 8, true}, {REG_BINARY, 4, false}, {REG_BINARY, 9, false}, {REG_SZ, 8, false}};
    for (const auto& [type, size, isKept] : rows) {
        RegSetValueExW(key, TEXT("HostID"), 0, type, bytes, size);
        const std::string sent = identity();
        EXPECT_EQ(isKept, sent == "AB07060504030201") << size;
        EXPECT_EQ(isKept, sent.ends_with("04030201")) << size;
        EXPECT_EQ(sent, identity()) << "one of another form is replaced";
    }
    RegCloseKey(key);
}

TEST_F(Device, Several_requests_have_the_time_out_of_one) {
    monitor_.AnswerTo("AddressType", "0,X=Fax;");
    monitor_.AnswerTo("Lagoon", "0,X=0x10;");
    monitor_.AnswerTo("Customer", "0,X=7;");
    monitor_.AnswerTo("Printer", "0,X=ZR 1;");
    Guarded<KestrelQuickDial, KESTREL_ONE_TOUCH_RECORDS> buttons;
    std::array<uint32_t, 2> numbers = {9, 9};
    Guarded<kestrel_char, 64> out;
    const std::function<kestrel_bool(uint32_t)> calls[] = {
        [&](uint32_t ms) { return GetQuickDialButtons(buttons.records, ms); },
        [&](uint32_t ms) { return GetVendorProductIDs(&numbers[0], &numbers[1], ms); },
        [&](uint32_t ms) { return SetDeviceTime(2012, 3, 9, 14, 5, ms); },
        [&](uint32_t ms) { return GetFWVersion(&numbers[0], &numbers[1], out.records, ms); },
    };
    for (const auto& call : calls)
        EXPECT_EQ(kDone, Ended(call(kLong)));
    EXPECT_EQ((std::array<uint32_t, 2>{16, 7}), numbers);
    EXPECT_EQ(WideText(TEXT("ZR 1")), Text(out.records));
    for (const KestrelQuickDial& button : buttons.records)
        EXPECT_EQ(1u, button.addressType);
    // A time-out unlike the last one is announced before each request, so two replies of four come in time.
    uint32_t timeout = 1000;
    monitor_.SetDelay(300);
    for (const auto& call : calls) {
        EXPECT_FALSE(call(++timeout));
        Sleep(400);  // whatever comes late has come
    }
    EXPECT_TRUE(IsZero(buttons.records[4]));
    EXPECT_EQ(0u, numbers[1]);
    EXPECT_EQ(0u, out.records[0]);
    numbers = {9, 9};
    EXPECT_EQ(1460u, Ended(GetFWVersion(&numbers[0], &numbers[1], out.records, 0)));
    EXPECT_EQ((std::array<uint32_t, 2>{}), numbers);
    monitor_.SetDelay(0);
    monitor_.AnswerTo("Customer", "0,X;");
    EXPECT_EQ(kBadReply, Ended(calls[3](kLong))) << "each of them must be answered";
}

TEST_F(Device, Capabilities_are_read_as_they_are_told) {
    const std::tuple<const char*, bool, uint32_t> rows[] = {
        {"OPL", true, 'O'}, {"opl", false, 'o'}, {"", false, 0}, {"\xE9", false, 0xFFFFFFE9}};
    uint8_t capable = 7;
    uint32_t version = 0;
    for (const auto& [text, expectedCapable, expectedVersion] : rows) {
        SCOPED_TRACE(text);
        monitor_.Answer("0,X="s + text + ";");
        EXPECT_EQ(kDone, Ended(GetCapFWUpgrade(&capable, kLong)));
        EXPECT_EQ(expectedCapable, capable != 0);
        EXPECT_EQ(kDone, Ended(GetCapRBNVer(&version, kLong)));
        EXPECT_EQ(expectedVersion, version);
    }
    const std::string key = "DeviceCapabilities.HWConfiguration.";
    EXPECT_EQ(key + "RBNVersion?" + key + "UpgradeFWCapabilities?", Sent().back());
    monitor_.Answer("0,X;");
    EXPECT_FALSE(GetCapRBNVer(&version, kLong));
    EXPECT_EQ(32u, version);
}

TEST_F(Device, The_capability_block_must_hold_what_is_asked_for) {
    const std::tuple<uint32_t, uint32_t, bool> rows[] = {{40, 16, false}, {12, 16, true},  {40, 40, true},
                                                         {0, 16, false},  {12, 41, false}, {12, 0, false},
                                                         {1, 3, false}};
    for (const auto& [ownSize, asked, isRead] : rows) {
        SCOPED_TRACE(testing::Message() << ownSize << ' ' << asked);
        std::string block(40, 'c');
        std::memcpy(block.data(), &ownSize, 4);
        monitor_.Answer("0,X#40=" + block + ";");
        Guarded<uint8_t, 48> out;
        EXPECT_EQ(isRead, GetCapabilities(out.records, asked, 1) != 0);
        if (isRead) {
            EXPECT_EQ(asked, out.records[0]);
            EXPECT_EQ('c', out.records[4]);
        }
        EXPECT_EQ(0xA5, out.records[asked]) << "behind the size";
    }
}

TEST_F(Device, A_service_is_configured_only_where_the_printer_names_it) {
    const std::string key = "DeviceSettings.System.Configuration";
    monitor_.Answer("0," + key + ".isPennantConfigured=TRUE;");
    uint8_t configured = 7;
    EXPECT_EQ(0u, Ended(GetGCPConfigured(&configured, kLong)));
    EXPECT_EQ(0, configured);
    EXPECT_EQ(kDone, Ended(GetPennantConfigured(&configured, kLong)));
    EXPECT_EQ(1, configured);
    EXPECT_EQ((Requests{key + "?", key + "?", key + ".isPennantConfigured?"}), Sent());
}

TEST_F(Device, An_upgrade_is_tried_where_it_can_be_done_and_judged_by_its_response_number) {
    const std::tuple<const char*, uint32_t, uint32_t> rows[] = {
        {"101,X;", kDone, 101}, {"100000,X;", kDone, 100000}, {"100,X;", 0, 100}, {"X;", kBadReply, 0}};
    const std::string file = (home_ / "firmware.bin").string();
    std::ofstream(file) << "image";
    const WideText path = Widened(file);
    monitor_.AnswerTo("UpgradeFWCapabilities", "0,X=OPL;");
    for (const auto& [reply, ends, number] : rows) {
        SCOPED_TRACE(reply);
        monitor_.Answer(reply);
        EXPECT_EQ(ends, Ended(UpgradeFW(path.c_str())));
        EXPECT_EQ(number, GetLastResponseNum());
        EXPECT_EQ(number == 101, RefreshFWCapabilities(kLong) != 0);
    }
    EXPECT_TRUE(Sent()[1].ends_with("firmware\x1c"s + "bin;"));
    EXPECT_EQ(2u, Ended(UpgradeFW((path + TEXT("x")).c_str())));
    EXPECT_TRUE(Sent().empty());
    monitor_.AnswerTo("UpgradeFWCapabilities", "0,X=USB;");
    EXPECT_EQ(50u, Ended(UpgradeFW(path.c_str())));
    EXPECT_EQ(1u, Sent().size());
}

TEST_F(Device, Lock_and_unlock_follow_the_response_number) {
    const auto lock = [] { return Lock(kLong); };
    const auto unlock = [] { return Unlock(kLong); };
    const auto select = [] { return SelectPrinter(kPrinter); };
    const auto asked = "UnlockPrinter?"s;
    const std::tuple<std::function<kestrel_bool()>, const char*, uint32_t, Requests> rows[] = {
        {lock, "2,X;", kDone, {"LockPrinter?"}},
        {select, "", 212, {}},
        {[] { return EnableCache(1); }, "101,X;", kDone, {"ZRCache=TRUE;"}},
        {[] { return Unlock(1200); }, "101,X;", 1460, {asked, asked, asked}},  // unlocked all the same
        {select, "", kDone, {}},
        {unlock, "3,X;", kDone, {asked}},
        {lock, "3,X;", kUnexpectedReply, {"LockPrinter?"}},
        {[] { return EnableCache(0); }, "3,X;", 0, {"ZRCache=FALSE;"}},
        {lock, "X;", kBadReply, {"LockPrinter?"}},
        {[] { return Cancel(); }, "X;", kDone, {"ZRCancel?"}},
        {unlock, "1999,X;", 170, {asked}},
        {lock, "2,X;", kDone, {"LockPrinter?"}},
        {unlock, "1999,X;", 170, {asked, "ZRCancel?"}},  // what holds it may be a job of this thread
        {[] { return EnableCache(1); }, "1999,X;", 170, {"ZRCache=TRUE;"}},
    };
    for (const auto& [call, reply, ends, requests] : rows) {
        SCOPED_TRACE(testing::PrintToString(requests) + " answered " + reply);
        monitor_.Answer(reply);
        EXPECT_EQ(ends, Ended(call()));
        EXPECT_EQ(requests, Sent());
    }
    monitor_.Answer("X;");
    EXPECT_FALSE(EnableCache(1));
    EXPECT_EQ(0u, GetLastResponseNum());
}

}  // namespace
