// Every setting, both ways, against the virtual printer; and the literal texts on the wire.
#include <kestrel/sdk.h>
#include <windows.h>

#include <array>
#include <cstring>
#include <optional>

#include "installed_printer.h"
#include "recording_monitor.h"
#include "settings/catalogue.h"

namespace {

void* Function(const char* name) {
    static HMODULE library = GetModuleHandleW(TEXT("ZRIJ9900SDK.dll"));
    void* address = reinterpret_cast<void*>(GetProcAddress(library, name));
    EXPECT_NE(nullptr, address) << name;
    return address;
}

template <typename... Arguments>
bool Call(const char* name, Arguments... arguments) {
    return reinterpret_cast<kestrel_bool (*)(Arguments...)>(Function(name))(arguments...) != 0;
}

template <typename Value>
bool Get(const SettingRow& row, Value* value) {
    return Call(row.getter, value, kLong);
}

template <typename Value>
bool Set(const SettingRow& row, Value value) {
    return Call(row.setter, value, kLong);
}

// Sets the value as type `Written` and reads it back as type `Read`.
template <typename Written, typename Read>
void ExpectKept(const SettingRow& row, Written value, Read expected) {
    SCOPED_TRACE(std::to_string(static_cast<long long>(value)));
    EXPECT_TRUE(Set<Written>(row, value)) << GetLastError();
    EXPECT_EQ(0u, GetLastError());
    Read found{};
    EXPECT_TRUE(Get<Read>(row, &found)) << GetLastError();
    EXPECT_EQ(expected, found);
    EXPECT_EQ(0u, GetLastError());
}

bool GetTextOf(const SettingRow& row, kestrel_char* buffer) {
    return row.index < 0 ? Get(row, buffer)
                         : Call(row.getter, static_cast<uint32_t>(row.index), buffer, kLong);
}

bool SetTextOf(const SettingRow& row, const kestrel_char* text) {
    return row.index < 0 ? Set(row, text) : Call(row.setter, static_cast<uint32_t>(row.index), text, kLong);
}

void ExpectTextKept(const SettingRow& row) {
    for (const kestrel_char* text : {TEXT("a;b&c=d,e"), TEXT("plain"), TEXT("")}) {
        // The units behind the documented buffer must stay as they are.
        const size_t units = row.bufferBytes / sizeof(kestrel_char);
        std::vector<kestrel_char> buffer(units + 4, TEXT('#'));
        EXPECT_TRUE(SetTextOf(row, text)) << GetLastError();
        EXPECT_TRUE(GetTextOf(row, buffer.data())) << GetLastError();
        EXPECT_EQ(WideText(text), buffer.data());
        EXPECT_EQ(WideText(4, TEXT('#')), WideText(buffer.end() - 4, buffer.end()));
    }
}

void ExpectAddressKept(const SettingRow& row) {
    for (const uint32_t address : {0x0100A8C0u, 0x3B3D2623u}) {
        EXPECT_TRUE(Set<uint32_t>(row, address)) << GetLastError();
        uint8_t bytes[5] = {0, 0, 0, 0, 0x55};
        EXPECT_TRUE(Get<uint8_t>(row, bytes)) << GetLastError();
        const uint8_t expected[5] = {static_cast<uint8_t>(address), static_cast<uint8_t>(address >> 8),
                                     static_cast<uint8_t>(address >> 16), static_cast<uint8_t>(address >> 24),
                                     0x55};
        EXPECT_EQ(0, std::memcmp(expected, bytes, sizeof(bytes)));
    }
}

void ExpectReadable(const SettingRow& row) {
    alignas(8) std::array<uint8_t, 512> value{};
    const bool read = row.readType == SettingType::kText
                          ? GetTextOf(row, reinterpret_cast<kestrel_char*>(value.data()))
                          : Get<uint8_t>(row, value.data());
    EXPECT_TRUE(read) << GetLastError();
}

void ExpectWritable(const SettingRow& row) {
    for (const EnumEntry& word : row.words)
        EXPECT_TRUE(Set<uint32_t>(row, static_cast<uint32_t>(word.value))) << GetLastError();
    EXPECT_FALSE(Set<uint32_t>(row, 99));
    EXPECT_EQ(87u, GetLastError());
}

void ExpectBothWays(const SettingRow& row) {
    switch (row.readType) {
        case SettingType::kBool:
            for (const uint8_t value : {0, 1})
                ExpectKept<uint8_t, uint8_t>(row, value, value);
            return;
        case SettingType::kU8:
            for (const uint8_t value : {1, 3})
                row.writeType == SettingType::kS8
                    ? ExpectKept<int8_t, uint8_t>(row, static_cast<int8_t>(value), value)
                    : ExpectKept<uint8_t, uint8_t>(row, value, value);
            return;
        case SettingType::kS8:
            for (const int8_t value : {-5, 4})
                ExpectKept<int8_t, int8_t>(row, value, value);
            return;
        case SettingType::kU16:
            for (const uint16_t value : {400, 25})
                ExpectKept<uint16_t, uint16_t>(row, value, value);
            return;
        case SettingType::kEnum:
            for (const EnumEntry& word : row.words)
                ExpectKept<uint32_t, uint32_t>(row, static_cast<uint32_t>(word.value),
                                               static_cast<uint32_t>(word.value));
            EXPECT_FALSE(Set<uint32_t>(row, 99));
            EXPECT_EQ(87u, GetLastError());
            return;
        case SettingType::kText:
            ExpectTextKept(row);
            return;
        case SettingType::kAddress:
            ExpectAddressKept(row);
            return;
        default:
            ADD_FAILURE() << "no case for the type of " << row.name;
    }
}

class Settings : public InstalledPrinter {};

TEST_F(Settings, Every_row_goes_both_ways) {
    StartPrinter();
    WithPrinter([] {
        int rows = 0;
        for (const SettingRow& row : Catalogue()) {
            SCOPED_TRACE(std::string(row.name));
            ++rows;
            if (row.getter != nullptr && row.setter != nullptr)
                ExpectBothWays(row);
            else if (row.getter != nullptr)
                ExpectReadable(row);
            else
                ExpectWritable(row);
        }
        EXPECT_EQ(86, rows);
    });
}

class Wire : public InstalledPrinter {
  protected:
    RecordingMonitor monitor_;
};

TEST_F(Wire, Requests_are_the_literal_texts_of_the_device_language) {
    struct Case {
        std::function<bool()> call;
        const char* reply;
        std::string request;
    };
    uint8_t byte = 0;
    uint8_t address[4];
    uint32_t number = 0;
    kestrel_char text[65];
    using namespace std::string_literals;
    const std::vector<Case> cases = {
        {[&] { return GetFaxRedials(&byte, kLong); }, "0000,X=3;", "DeviceSettings.Fax.Redials?"},
        {[] { return SetFaxRedials(3, kLong); }, "0000,X;", "DeviceSettings.Fax.Redials=3;"},
        {[] { return SetCopyBrightness(-2, kLong); }, "0000,X;", "DeviceSettings.Copy.Brightness=-2;"},
        {[] { return SetPhotoCopies(246, kLong); }, "0000,X;", "DeviceSettings.Photo.Quantity=246;"},
        {[] { return SetCopySizeScale(400, kLong); }, "0000,X;", "DeviceSettings.Copy.SizeScale=400;"},
        {[] { return SetFaxPrintDate(7, kLong); }, "0000,X;", "DeviceSettings.Fax.PrintDate=YES;"},
        {[] { return SetDisplayLanguage(11, kLong); }, "0000,X;",
         "DeviceSettings.System.Language=BokmalNorwegian;"},
        {[&] { return GetDisplayLanguage(&number, kLong); }, "0000,X=CastilianSpanish;",
         "DeviceSettings.System.Language?"},
        {[] { return SetFaxSendersName(TEXT("a;b=c"), kLong); }, "0000,X;",
         "DeviceSettings.Fax.UserInfo.Name=a\x1d"s + "b\x1e"s + "c;"},
        {[] { return SetStaticIPAddress(0x0100A8C0, kLong); }, "0000,X;",
         "DeviceNetwork.WiFiSettings.TCP_Configuration.Static.IP_Address#4=\xC0\xA8\x00\x01;"s},
        {[&] { return GetStaticIPAddress(address, kLong); }, "0000,X#4=\x01;&=;",
         "DeviceNetwork.WiFiSettings.TCP_Configuration.Static.IP_Address?"},
        {[&] { return GetWirelessSecurityKey(2, text, kLong); }, "0000,X=k;",
         "DeviceNetwork.WiFiSettings.Mac_Configuration.Security.Key2?"},
        {[] { return CleanHead(1); }, "96,X;", "Maintenance=004?"},
        {[] { return CleanHead(0); }, "96,X;", "Maintenance=003?"},
        {[] { return VTOE(); }, "96,X;", "Maintenance=007?"},
    };
    WithPrinter([&] {
        EXPECT_EQ((std::vector<std::string>{"ZRTimeoutParam=950;", "ZRPing?"}), monitor_.Requests());
        GetFaxRedials(&byte, kLong);
        EXPECT_EQ((std::vector<std::string>{"ZRTimeoutParam=4750;", "DeviceSettings.Fax.Redials?"}),
                  monitor_.Requests());
        for (const Case& row : cases) {
            monitor_.Answer(row.reply);
            EXPECT_TRUE(row.call()) << row.request << ' ' << GetLastError();
            EXPECT_EQ(std::vector<std::string>{row.request}, monitor_.Requests());
        }
        EXPECT_EQ(12u, number);
        EXPECT_EQ(0, std::memcmp("\x01;&=", address, 4));
    });
}

TEST_F(Wire, Replies_are_judged_and_read_as_the_device_language_says) {
    struct Case {
        const char* reply;
        uint32_t error;  // of GetFaxRedials
        uint8_t value;
        uint32_t number;     // response number afterwards
        const char* stored;  // as the last bad response
    };
    const Case cases[] = {
        {"4000,X=5;", 0, 5, 4000, ""},
        {"100000,X=5;", 0, 5, 100000, ""},
        {",X=5;", 0, 5, 0, ""},
        {"X=5;", 0, 5, 0, ""},
        {"0000,X=300;", 0, 44, 0, ""},
        {"0000,X=0x1F;", 0, 31, 0, ""},
        {"0000,X=;", 0, 0, 0, ""},
        {"100001,X=5;", 31, 0, 100001, "100001,X=5;"},
        {"1999,X=5;", 170, 0, 1999, "1999,X=5;"},
        {"3400,what=?;", 22, 0, 3400, "3400,what=?;"},
        {"3450,X;", 23, 0, 3450, "3450,X;"},
        {"100009,X;", 0xE0000003, 0, 100009, "100009,X;"},
        {"0000,X=five;", 0xE0000011, 0, 0, "0000,X=five;"},
        {"0000,X;", 0xE0000011, 0, 0, "0000,X;"},
        {"0000,X=5", 0xE0000012, 0, 0, ""},
        {"0000,X#99999999999999999=5;", 0xE0000012, 0, 0, ""},
        {"0000,\x01=5;", 0xE0000012, 0, 0, ""},
        {"99999999999999999999,X=5;", 31, 0, 0xFFFFFFFF, "99999999999999999999,X=5;"},
        {"0000,X=-1;", 0, 255, 0, ""},
    };
    WithPrinter([&] {
        for (const Case& row : cases) {
            SCOPED_TRACE(row.reply);
            monitor_.Answer(row.reply);
            uint8_t value = 0x55;
            EXPECT_EQ(row.error == 0, GetFaxRedials(&value, kLong) != 0);
            EXPECT_EQ(row.error, GetLastError());
            EXPECT_EQ(row.value, value);
            EXPECT_EQ(row.number, GetLastResponseNum());
            kestrel_char stored[64];
            GetLastBadResponse(stored, 64);
            EXPECT_EQ(row.error, GetLastError()) << "a diagnostic export must not change it";
            const std::string expected = row.stored;
            EXPECT_EQ(WideText(expected.begin(), expected.end()), stored);
        }
    });
}

TEST_F(Wire, Odd_values_of_the_other_types) {
    WithPrinter([&] {
        const auto errorOf = [&](const std::string& reply, auto get, auto* value) {
            monitor_.Answer(reply);
            SetLastError(ERROR_ACCESS_DENIED);
            const bool done = get(value, kLong) != 0;
            const uint32_t error = GetLastError();
            EXPECT_EQ(done, error == 0) << reply;
            return error;
        };
        uint8_t byte = 0;
        for (const auto& [reply, level] : {std::pair("0,X=99;", 99), {"0,X=150;", 100}, {"0,X=300;", 44}}) {
            EXPECT_EQ(0u, errorOf(reply, GetUpperTrayLevel, &byte));
            EXPECT_EQ(level, byte);
        }
        uint16_t scale = 0;
        EXPECT_EQ(0u, errorOf("0,X=70000;", GetCopySizeScale, &scale));
        EXPECT_EQ(70000 - 65536, scale);
        uint32_t strength = 0;
        EXPECT_EQ(0u, errorOf("0,X=-52;", GetWirelessRSSIdBm, &strength));
        EXPECT_EQ(-52, static_cast<int32_t>(strength));
        kestrel_char ssid[34];
        ssid[33] = TEXT('#');
        EXPECT_EQ(0u, errorOf("0,X=" + std::string(70, 'y') + ";", GetWirelessSSID, ssid));
        EXPECT_EQ(WideText(32, TEXT('y')), ssid);
        EXPECT_EQ(TEXT('#'), ssid[33]);
        for (const auto& [reply, error] : {std::pair("0,X=(null);", 0u), {"0,X;", 0xE0000011}}) {
            ssid[0] = TEXT('o');
            EXPECT_EQ(error, errorOf(reply, GetWirelessSSID, ssid));
            EXPECT_EQ(0, ssid[0]) << reply;
        }
        for (const auto& [reply, error] :
             {std::pair("0,X#6=abcdef;", 0xE0000012), {"0,X#0=;", 0xE0000012}, {"0,X=192;", 0xE0000011}}) {
            uint8_t address[4] = {1, 2, 3, 4};
            EXPECT_EQ(error, errorOf(reply, GetStaticIPAddress, address)) << reply;
            EXPECT_EQ(0, address[0] | address[1] | address[2] | address[3]);
        }
        for (const char* reply : {"0,X=maybe;", "0,X=;", "0,X=1;"}) {
            byte = 7;
            EXPECT_EQ(0xE0000011u, errorOf(reply, GetFaxPrintDate, &byte)) << reply;
            EXPECT_EQ(0, byte);
        }
        uint32_t word = 77;
        for (const auto& [reply, error] : {std::pair("0,X=Klingon;", 87u), {"0,X=;", 87}, {"3400,X;", 22}}) {
            EXPECT_EQ(error, errorOf(reply, GetDisplayLanguage, &word)) << reply;
            EXPECT_EQ(77u, word) << "written only on a match";
        }
        for (const auto& [reply, error] : {std::pair("95,X;", 0u), {"X;", 0xE0000011}, {"1999,X;", 170}}) {
            monitor_.Answer(reply);
            EXPECT_FALSE(CleanHead(1));
            EXPECT_EQ(error, GetLastError()) << reply;
        }
    });
}

TEST_F(Wire, What_is_wrong_in_the_call_sends_nothing) {
    WithPrinter([&] {
        monitor_.Requests();
        kestrel_char text[65];
        uint32_t number = 5;
        EXPECT_FALSE(GetWirelessSecurityKey(4, text, kLong));
        EXPECT_EQ(87u, GetLastError());
        EXPECT_FALSE(SetDisplayLanguage(15, kLong));
        EXPECT_EQ(87u, GetLastError());
        EXPECT_FALSE(GetFaxRedials(nullptr, kLong));
        EXPECT_EQ(87u, GetLastError());
        EXPECT_FALSE(SetFriendlyName(nullptr, kLong));
        EXPECT_EQ(87u, GetLastError());
        EXPECT_TRUE(GetPhotoTrayState(&number, kLong));
        EXPECT_EQ(0u, number);
        EXPECT_TRUE(monitor_.Requests().empty());
    });
}

}  // namespace
