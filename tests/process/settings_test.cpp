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

const kestrel_char* const kPrinter = TEXT("P");

void* Function(const char* name) {
    static HMODULE library = GetModuleHandleW(TEXT("ZRIJ9900SDK.dll"));
    void* address = reinterpret_cast<void*>(GetProcAddress(library, name));
    EXPECT_NE(nullptr, address) << name;
    return address;
}

template <typename Value>
bool Get(const SettingRow& row, Value* value) {
    return reinterpret_cast<kestrel_bool (*)(Value*, uint32_t)>(Function(row.getter))(value, kLong) != 0;
}

template <typename Value>
bool Set(const SettingRow& row, Value value) {
    return reinterpret_cast<kestrel_bool (*)(Value, uint32_t)>(Function(row.setter))(value, kLong) != 0;
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
    void* function = Function(row.getter);
    if (row.index < 0)
        return reinterpret_cast<kestrel_bool (*)(kestrel_char*, uint32_t)>(function)(buffer, kLong) != 0;
    return reinterpret_cast<kestrel_bool (*)(uint32_t, kestrel_char*, uint32_t)>(function)(
               static_cast<uint32_t>(row.index), buffer, kLong) != 0;
}

bool SetTextOf(const SettingRow& row, const kestrel_char* text) {
    void* function = Function(row.setter);
    if (row.index < 0)
        return reinterpret_cast<kestrel_bool (*)(const kestrel_char*, uint32_t)>(function)(text, kLong) != 0;
    return reinterpret_cast<kestrel_bool (*)(uint32_t, const kestrel_char*, uint32_t)>(function)(
               static_cast<uint32_t>(row.index), text, kLong) != 0;
}

void ExpectTextKept(const SettingRow& row) {
    for (const kestrel_char* text : {TEXT("a;b&c=d,e"), TEXT("plain"), TEXT("")}) {
        // The units behind the documented buffer must stay as they are.
        const size_t units = row.bufferBytes / sizeof(kestrel_char);
        std::vector<kestrel_char> buffer(units + 4, TEXT('#'));
        EXPECT_TRUE(SetTextOf(row, text)) << GetLastError();
        EXPECT_TRUE(GetTextOf(row, buffer.data())) << GetLastError();
        EXPECT_EQ(std::basic_string<kestrel_char>(text), buffer.data());
        EXPECT_EQ(
            std::basic_string<kestrel_char>(4, TEXT('#')),
            std::basic_string<kestrel_char>(buffer.begin() + static_cast<ptrdiff_t>(units), buffer.end()));
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
    OnFreshThread([] {
        ASSERT_TRUE(SelectPrinter(kPrinter)) << GetLastError();
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
    OnFreshThread([&] {
        ASSERT_TRUE(SelectPrinter(kPrinter));
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
        {"4199,X=5;", 0, 5, 4199, ""},
        {"1000,X=5;", 0, 5, 1000, ""},
        {"100000,X=5;", 0, 5, 100000, ""},
        {",X=5;", 0, 5, 0, ""},
        {"X=5;", 0, 5, 0, ""},
        {"0000,X=300;", 0, 44, 0, ""},
        {"0000,X=0x1F;", 0, 31, 0, ""},
        {"0000,X=;", 0, 0, 0, ""},
        {"4200,X=5;", 31, 0, 4200, "4200,X=5;"},
        {"1001,X=5;", 31, 0, 1001, "1001,X=5;"},
        {"100001,X=5;", 31, 0, 100001, "100001,X=5;"},
        {"1999,X=5;", 170, 0, 1999, "1999,X=5;"},
        {"3400,what=?;", 22, 0, 3400, "3400,what=?;"},
        {"3450,X;", 23, 0, 3450, "3450,X;"},
        {"100003,X;", 4319, 0, 100003, "100003,X;"},
        {"100004,X;", 1460, 0, 100004, "100004,X;"},
        {"100009,X;", 0xE0000003, 0, 100009, "100009,X;"},
        {"100113,X;", 2, 0, 100113, "100113,X;"},
        {"100114,X;", 1392, 0, 100114, "100114,X;"},
        {"0000,X=five;", 0xE0000011, 0, 0, "0000,X=five;"},
        {"0000,X=+5;", 0xE0000011, 0, 0, "0000,X=+5;"},
        {"0000,X;", 0xE0000011, 0, 0, "0000,X;"},
        {"0000,X=5", 0xE0000012, 0, 0, ""},
        {"0000,X#9999999999=5;", 0xE0000012, 0, 0, ""},
        {"0000,X#99999999999999999=5;", 0xE0000012, 0, 0, ""},
        {"0000,\x01=5;", 0xE0000012, 0, 0, ""},
        {"99999999999999999999,X=5;", 31, 0, 0xFFFFFFFF, "99999999999999999999,X=5;"},
    };
    OnFreshThread([&] {
        ASSERT_TRUE(SelectPrinter(kPrinter));
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
    OnFreshThread([&] {
        ASSERT_TRUE(SelectPrinter(kPrinter));
        uint8_t level = 0;
        monitor_.Answer("0000,X=150;");
        EXPECT_TRUE(GetUpperTrayLevel(&level, kLong));
        EXPECT_EQ(100, level);
        kestrel_char ssid[34];
        ssid[33] = TEXT('#');
        monitor_.Answer("0000,X=" + std::string(70, 'y') + ";");
        EXPECT_TRUE(GetWirelessSSID(ssid, kLong));
        EXPECT_EQ(WideText(32, TEXT('y')), ssid);
        EXPECT_EQ(TEXT('#'), ssid[33]);
        monitor_.Answer("0000,X=(null);");
        EXPECT_TRUE(GetWirelessSSID(ssid, kLong));
        EXPECT_EQ(0, ssid[0]);
        uint8_t address[4] = {1, 2, 3, 4};
        monitor_.Answer("0000,X#6=abcdef;");
        EXPECT_FALSE(GetStaticIPAddress(address, kLong));
        EXPECT_EQ(0xE0000012u, GetLastError());
        EXPECT_EQ(0, address[0] | address[1] | address[2] | address[3]);
        uint8_t yes = 7;
        monitor_.Answer("0000,X=maybe;");
        EXPECT_FALSE(GetFaxPrintDate(&yes, kLong));
        EXPECT_EQ(0xE0000011u, GetLastError());
        EXPECT_EQ(0, yes);
        uint32_t word = 77;
        monitor_.Answer("0000,X=Klingon;");
        EXPECT_FALSE(GetDisplayLanguage(&word, kLong));
        EXPECT_EQ(87u, GetLastError());
        EXPECT_EQ(77u, word) << "written only on a match";
        for (const auto& [reply, error] : {std::pair("95,X;", 0u), std::pair("X;", 0xE0000011u)}) {
            monitor_.Answer(reply);
            EXPECT_FALSE(CleanHead(1));
            EXPECT_EQ(error, GetLastError());
        }
    });
}

TEST_F(Wire, What_is_wrong_in_the_call_sends_nothing) {
    OnFreshThread([&] {
        ASSERT_TRUE(SelectPrinter(kPrinter));
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
