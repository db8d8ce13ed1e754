// Every setting, both ways, against the virtual printer; and the literal texts on the wire.
#include <array>
#include <iomanip>
#include <tuple>

#include "export_call.h"
#include "installed_printer.h"
#include "recording_monitor.h"
#include "sections.h"

namespace {

using namespace std::string_literals;

std::vector<int> ValuesOf(const catalogue::Row& row) {
    if (row.readType == catalogue::Type::Bool) return {0, 1};
    if (row.readType == catalogue::Type::Address) return {0x0100A8C0, 0x3B3D2623};
    std::vector<int> values;
    for (const catalogue::EnumEntry& word : row.words)
        values.push_back(static_cast<int>(word.value));
    if (row.words.empty()) values = {static_cast<int>(row.lowest), static_cast<int>(row.highest)};
    return values;
}

void ExpectNumbersTaken(const catalogue::Row& row) {
    for (const int value : ValuesOf(row)) {
        SCOPED_TRACE(value);
        EXPECT_EQ(kDone, Ended(CallExport(row, row.setter, value, kLong)));
        if (!row.CanRead()) continue;
        std::array<uint8_t, 8> found;
        found.fill(0x55);
        std::array<uint8_t, 8> expected = found;
        std::memcpy(expected.data(), &value, OutBytes(row));
        EXPECT_EQ(kDone, Ended(CallExport(row, row.getter, found.data(), kLong)));
        EXPECT_EQ(expected, found);
    }
    if (row.readType == catalogue::Type::Enum) {
        EXPECT_EQ(87u, Ended(CallExport(row, row.setter, 99, kLong)));
    }
}

void ExpectTextsTaken(const catalogue::Row& row) {
    for (const kestrel_char* text : {TEXT("a;b&c=d,e"), TEXT("plain"), TEXT("")}) {
        // The units behind the documented buffer must stay as they are.
        std::vector<kestrel_char> buffer(row.bufferBytes / sizeof(kestrel_char) + 4, TEXT('#'));
        EXPECT_EQ(kDone, Ended(CallExport(row, row.setter, text, kLong)));
        EXPECT_EQ(kDone, Ended(CallExport(row, row.getter, buffer.data(), kLong)));
        EXPECT_EQ(WideText(text), buffer.data());
        EXPECT_EQ(WideText(4, TEXT('#')), WideText(buffer.end() - 4, buffer.end()));
    }
}

class Settings : public InstalledPrinter {};

TEST_F(Settings, Every_row_goes_both_ways) {
    StartPrinter();
    WithPrinter([] {
        for (const catalogue::Row& row : catalogue::Rows()) {
            SCOPED_TRACE(std::string(row.name));
            alignas(8) std::array<uint8_t, 512> value{};
            if (!row.CanWrite())
                EXPECT_EQ(kDone, Ended(CallExport(row, row.getter, value.data(), kLong)));
            else if (row.readType == catalogue::Type::Text)
                ExpectTextsTaken(row);
            else
                ExpectNumbersTaken(row);
        }
    });
}

TEST_F(Wire, A_time_out_is_announced_once_by_its_95_percent) {
    WithPrinter([&] {
        EXPECT_EQ((Requests{"ZRTimeoutParam=950;", "ZRPing?"}), monitor_.TakeRequests());
        uint8_t value = 0;
        for (int i = 0; i < 2; ++i)
            GetFaxRedials(&value, kLong);
        const std::string request = "DeviceSettings.Fax.Redials?";
        EXPECT_EQ((Requests{"ZRTimeoutParam=4750;", request, request}), monitor_.TakeRequests());
    });
}

TEST_F(Wire, Requests_are_the_literal_texts_of_the_device_language) {
    uint8_t byte = 0;
    uint32_t number = 0;
    uint32_t count = 0;
    kestrel_char text[65];
    const std::string time = "DeviceSettings.System.Time.";
    const std::string ping = "DeviceNetwork.Network.SetPing.";
    const std::string pinged = "DeviceNetwork.Network.GetPingResult.NumOfPing";
    const std::string security = "DeviceNetwork.WiFiSettings.Mac_Configuration.Security.";
    const std::string search = "DeviceNetwork.WiFiAccessPoints.SearchAccessPoints=YES;";
    const std::string address = "DeviceNetwork.WiFiSettings.TCP_Configuration.Static.IP_Address";
    const std::pair<std::function<kestrel_bool()>, Requests> rows[] = {
        {[&] { return GetFaxRedials(&byte, kLong); }, {"DeviceSettings.Fax.Redials?"}},
        {[] { return SetFaxRedials(3, kLong); }, {"DeviceSettings.Fax.Redials=3;"}},
        {[] { return SetCopyBrightness(-2, kLong); }, {"DeviceSettings.Copy.Brightness=-2;"}},
        {[] { return SetPhotoCopies(246, kLong); }, {"DeviceSettings.Photo.Quantity=246;"}},
        {[] { return SetCopySizeScale(400, kLong); }, {"DeviceSettings.Copy.SizeScale=400;"}},
        {[] { return SetFaxPrintDate(7, kLong); }, {"DeviceSettings.Fax.PrintDate=YES;"}},
        {[] { return SetDisplayLanguage(11, kLong); }, {"DeviceSettings.System.Language=BokmalNorwegian;"}},
        {[&] { return GetDisplayLanguage(&number, kLong); }, {"DeviceSettings.System.Language?"}},
        {[] { return SetFaxSendersName(TEXT("a;b=c"), kLong); },
         {"DeviceSettings.Fax.UserInfo.Name=a\x1d"s + "b\x1e"s + "c;"}},
        {[] { return SetStaticIPAddress(0x0100A8C0, kLong); }, {address + "#4=\xC0\xA8\x00\x01;"s}},
        {[&] { return GetWirelessSecurityKey(2, text, kLong); }, {security + "Key2?"}},
        {[] { return CalibrateHead(); }, {"Maintenance=001?"}},
        {[] { return PrintTestPage(); }, {"Maintenance=002?"}},
        {[] { return CleanHead(0); }, {"Maintenance=003?"}},
        {[] { return CleanHead(1); }, {"Maintenance=004?"}},
        {[] { return CheckNozzle(); }, {"Maintenance=005?"}},
        {[] { return AlignHead(); }, {"Maintenance=006?"}},
        {[] { return VTOE(); }, {"Maintenance=007?"}},
        {[] { return StartSearchForAccessPoints(kLong); }, {search}},
        {[&] { return GetNumOfPingExecuted(&count, kLong); }, {pinged + "Executed?"}},
        {[&] { return GetNumOfPingSuccess(&count, kLong); }, {pinged + "Success?"}},
        {[&] { return GetCapTOFEdgeOverride(&byte, kLong); },
         {"DeviceCapabilities.HWConfiguration.TOFEdgeOverrideCapable?"}},
        {[] { return SetPing(0x0100000A, 4, 2, kLong); },
         {ping + "Ip_Addr[0]#4=\x0A\x00\x00\x01;"s + ping + "NumOfPing=4;" + ping + "TimeoutOfPing=2;"}},
        {[] { return SetDeviceTime(2012, 3, 9, 14, 5, kLong); },
         {time + "Year=2012;" + time + "Month=3;" + time + "Day=9;" + time + "Hour=14;" + time + "Minute=5;",
          time + "Year?"}},
    };
    monitor_.AnswerTo("Language?", "0000,X=CastilianSpanish;");
    monitor_.AnswerTo("Maintenance", "96,X;");
    monitor_.AnswerTo("Capable", "0,X=TRUE;");
    for (const auto& [call, requests] : rows) {
        SCOPED_TRACE(requests[0]);
        EXPECT_EQ(kDone, Ended(call()));
        EXPECT_EQ(requests, Sent());
    }
    EXPECT_EQ(12u, number);
}

TEST_F(Wire, Replies_are_judged_and_read_as_the_device_language_says) {
    ForEachCase(REPLIES, "Replies", [this](const std::string& reply, const std::string& expected) {
        std::istringstream words(expected);
        uint32_t ends = 0;
        int value = 0;
        uint32_t number = 0;
        std::string kept;
        words >> std::setbase(0) >> ends >> value >> number >> kept;
        monitor_.Answer(reply);
        uint8_t found = 0x55;
        EXPECT_EQ(ends, Ended(GetFaxRedials(&found, kLong)));
        EXPECT_EQ(value, found);
        EXPECT_EQ(number, GetLastResponseNum());
        kestrel_char bad[64];
        GetLastBadResponse(bad, 64);
        EXPECT_EQ(ends == kDone ? 0 : ends, GetLastError()) << "diagnostics must not change it";
        EXPECT_EQ(Widened(kept == "kept" ? reply : ""), bad);
    });
}

TEST_F(Wire, Values_of_every_type_are_cut_to_it_and_cleared_on_failure_but_for_words) {
    uint32_t out = 0;
    uint8_t* const bytes = reinterpret_cast<uint8_t*>(&out);
    const auto level = [&] { return GetUpperTrayLevel(bytes, kLong); };
    const auto scale = [&] { return GetCopySizeScale(reinterpret_cast<uint16_t*>(&out), kLong); };
    const auto strength = [&] { return GetWirelessRSSIdBm(&out, kLong); };
    const auto address = [&] { return GetStaticIPAddress(bytes, kLong); };
    const auto printDate = [&] { return GetFaxPrintDate(bytes, kLong); };
    const auto language = [&] { return GetDisplayLanguage(&out, kLong); };
    const auto clean = [] { return CleanHead(1); };
    constexpr uint32_t kUntouched = 0x55555555;
    const std::tuple<std::function<kestrel_bool()>, const char*, uint32_t, uint32_t> rows[] = {
        {level, "0,X=99;", kDone, 0x55555563},
        {level, "0,X=150;", kDone, 0x55555564},
        {level, "0,X=300;", kDone, 0x5555552C},
        {scale, "0,X=70000;", kDone, 0x55551170},
        {strength, "0,X=-52;", kDone, 0xFFFFFFCC},
        {address, "0000,X#4=\x01;&=;", kDone, 0x3D263B01},
        {address, "0,X#6=abcdef;", kUnexpectedReply, 0},
        {address, "0,X#0=;", kUnexpectedReply, 0},
        {address, "0,X=192;", kBadReply, 0},
        {printDate, "0,X=maybe;", kBadReply, 0x55555500},
        {printDate, "0,X=;", kBadReply, 0x55555500},
        {printDate, "0,X=1;", kBadReply, 0x55555500},
        {language, "0,X=Klingon;", 87, kUntouched},
        {language, "0,X=;", 87, kUntouched},
        {language, "3400,X;", 22, kUntouched},
        {clean, "95,X;", 0, kUntouched},
        {clean, "X;", kBadReply, kUntouched},
        {clean, "1999,X;", 170, kUntouched},
    };
    for (const auto& [call, reply, ends, value] : rows) {
        SCOPED_TRACE(reply);
        monitor_.Answer(reply);
        out = kUntouched;
        SetLastError(ERROR_ACCESS_DENIED);
        EXPECT_EQ(ends, Ended(call()));
        EXPECT_EQ(ends == kDone ? 0 : ends, GetLastError());
        EXPECT_EQ(value, out);
    }
}

TEST_F(Wire, Texts_are_cut_to_their_buffer_and_empty_when_there_is_none) {
    const std::string longText = "0,X=" + std::string(70, 'y') + ";";
    const std::tuple<std::string, uint32_t, size_t> rows[] = {
        {longText, kDone, 32}, {"0,X=(null);", kDone, 0}, {"0,X;", kBadReply, 0}};
    for (const auto& [reply, ends, letters] : rows) {
        monitor_.Answer(reply);
        Guarded<kestrel_char, 33> out;
        EXPECT_EQ(ends, Ended(GetWirelessSSID(out.records, kLong))) << reply;
        EXPECT_EQ(WideText(letters, TEXT('y')), Text(out.records));
    }
    monitor_.Answer(longText);
    Guarded<kestrel_char, 29> clock;
    EXPECT_EQ(kDone, Ended(GetCurrentTimeRTC(clock.records, kLong)));
    EXPECT_EQ(WideText(28, TEXT('y')), Text(clock.records));
}

TEST_F(Wire, A_bad_reply_is_kept_whole_and_cut_to_the_buffer_of_whoever_asks) {
    const std::string longest = "3400," + std::string(65786, 'y');
    monitor_.Answer(longest);
    uint8_t value = 0;
    EXPECT_EQ(22u, Ended(GetFaxRedials(&value, kLong)));
    std::vector<kestrel_char> text(70000, TEXT('#'));
    for (const auto& [capacity, letters] : {std::pair(0u, 70000), {1u, 0}, {2u, 1}, {70000u, 65791}}) {
        GetLastBadResponse(text.data(), capacity);
        EXPECT_EQ(letters, std::ranges::find(text, kestrel_char{0}) - text.begin());
    }
    GetLastBadResponse(nullptr, 1);
}

TEST_F(Wire, What_is_wrong_in_the_call_sends_nothing) {
    kestrel_char text[65];
    uint32_t number = 5;
    EXPECT_EQ(87u, Ended(GetWirelessSecurityKey(4, text, kLong)));
    EXPECT_EQ(87u, Ended(SetDisplayLanguage(15, kLong)));
    EXPECT_EQ(87u, Ended(GetFaxRedials(nullptr, kLong)));
    EXPECT_EQ(87u, Ended(SetFriendlyName(nullptr, kLong)));
    EXPECT_EQ(87u, Ended(GetPhotoTrayState(nullptr, kLong)));
    OnFreshThread([&] {
        EXPECT_EQ(kDone, Ended(GetPhotoTrayState(&number, kLong)));
        EXPECT_EQ(0u, GetLastError()) << "whatever the making of its object has left";
    });
    EXPECT_EQ(0u, number);
    EXPECT_TRUE(Sent().empty());
}

}  // namespace
