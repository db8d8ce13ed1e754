// Settings against a printer that answers from a script: what is sent, what is made of the answers.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "kestrel/sdk_errors.h"
#include "settings/maintenance.h"
#include "settings/setting_access.h"

namespace {

using namespace std::string_literals;

constexpr uint32_t kTimeoutMs = 3000;

/// Answers every request with the same reply, on the channel's own thread.
class ScriptedPrinter final : public OPLChannel {
  public:
    ~ScriptedPrinter() override { Close(); }

    void Answer(std::string reply) {
        const std::lock_guard lock(mutex_);
        reply_ = std::move(reply);
        requests_.clear();
    }

    /// What was asked since the last Answer, announcements of a time-out left out.
    std::vector<std::string> Requests() {
        const std::lock_guard lock(mutex_);
        return requests_;
    }

    void OnMessage(const void* data, size_t length) override {
        const std::string request(static_cast<const char*>(data), length);
        std::string reply = "0000,ZRTimeoutParam;";
        if (!request.starts_with("ZRTimeoutParam")) {
            const std::lock_guard lock(mutex_);
            requests_.push_back(request);
            reply = reply_;
        }
        Send(reply.data(), static_cast<uint32_t>(reply.size()), kTimeoutMs);
    }

  private:
    std::mutex mutex_;
    std::string reply_;
    std::vector<std::string> requests_;
};

class Settings : public testing::Test {
  protected:
    void SetUp() override {
        WideText name = TEXT("SettingsTest-");
        for (const char digit : std::to_string(GetCurrentProcessId()))
            name += static_cast<WCHAR>(digit);
        ASSERT_TRUE(printer_.Open(kwt::ChannelRole::Server, name.c_str()));
        ASSERT_TRUE(printer_.StartServerThread());
        ASSERT_TRUE(sdk_.oplChannel.Open(kwt::ChannelRole::Client, name.c_str()));
    }

    /// Reads with the answer in place and leaves an old error, to see that it is cleared.
    template <typename Value>
    bool Read(bool (*read)(KestrelSDK&, const SettingAccess&, Value*, uint32_t), const SettingAccess& setting,
              const std::string& answer, Value* value) {
        printer_.Answer(answer);
        SetLastError(ERROR_ACCESS_DENIED);
        return read(sdk_, setting, value, kTimeoutMs);
    }

    template <typename Value>
    std::vector<std::string> Write(bool (*write)(KestrelSDK&, const SettingAccess&, Value, uint32_t),
                                   const SettingAccess& setting, Value value) {
        printer_.Answer("0000,Key=1;");
        EXPECT_TRUE(write(sdk_, setting, value, kTimeoutMs));
        return printer_.Requests();
    }

    ScriptedPrinter printer_;
    KestrelSDK sdk_;
};

constexpr SettingAccess Plain(OplKey key) {
    return {key, kNoWords, 0};
}

struct IntCase {
    const char* value;
    uint32_t read;
};

TEST_F(Settings, Numbers_are_cut_to_the_width_of_the_function) {
    for (const IntCase& c : {IntCase{"3", 3}, {"300", 44}, {"-1", 255}, {"0x1F", 31}, {"", 0}}) {
        uint8_t value = 99;
        EXPECT_TRUE(Read(ReadU8, Plain(OplKey::FaxRedials), "0000,Key="s + c.value + ";", &value)) << c.value;
        EXPECT_EQ(value, c.read) << c.value;
        EXPECT_EQ(GetLastError(), 0u);
    }
    EXPECT_EQ(printer_.Requests(), std::vector{"DeviceSettings.Fax.Redials?"s});

    uint16_t word = 0;
    EXPECT_TRUE(Read(ReadU16, Plain(OplKey::CopySizeScale), "0000,Key=70000;", &word));
    EXPECT_EQ(word, 70000 - 65536);
    int8_t brightness = 0;
    EXPECT_TRUE(Read(ReadS8, Plain(OplKey::CopyBrightness), "0000,Key=-2;", &brightness));
    EXPECT_EQ(brightness, -2);
    uint32_t strength = 0;
    EXPECT_TRUE(Read(ReadS32, Plain(OplKey::WirelessRSSIdBm), "0000,Key=-52;", &strength));
    EXPECT_EQ(static_cast<int32_t>(strength), -52);
}

TEST_F(Settings, A_level_above_100_percent_counts_as_100) {
    for (const IntCase& c : {IntCase{"0", 0}, {"99", 99}, {"100", 100}, {"150", 100}, {"300", 44}}) {
        uint8_t level = 7;
        EXPECT_TRUE(Read(ReadPercent, Plain(OplKey::UpperTrayLevel), "0000,Key="s + c.value + ";", &level));
        EXPECT_EQ(level, c.read) << c.value;
    }
}

TEST_F(Settings, A_reply_without_a_number_clears_the_output_and_is_kept) {
    for (const char* const reply : {"0000,Key=+5;", "0000,Key;", "0000,Key= 5;", "0000,Key=5x;"}) {
        uint8_t value = 99;
        EXPECT_FALSE(Read(ReadU8, Plain(OplKey::FaxRedials), reply, &value)) << reply;
        EXPECT_EQ(value, 0);
        EXPECT_EQ(GetLastError(), SDK_ERROR_BAD_REPLY);
        EXPECT_EQ(sdk_.lastBadResponse, reply);
    }
}

TEST_F(Settings, Booleans_are_read_from_the_devices_words) {
    struct BoolCase {
        const char* word;
        bool read;
        uint8_t value;
    };
    for (const BoolCase& c : {BoolCase{"YES", true, 1},
                              {"No", true, 0},
                              {"ON", true, 1},
                              {"maybe", false, 0},
                              {"", false, 0},
                              {"1", false, 0}}) {
        uint8_t value = 99;
        EXPECT_EQ(Read(ReadBool, Plain(OplKey::FaxBackup), "0000,Key="s + c.word + ";", &value), c.read);
        EXPECT_EQ(value, c.value) << c.word;
        EXPECT_EQ(GetLastError(), c.read ? 0u : SDK_ERROR_BAD_REPLY) << c.word;
    }
}

TEST_F(Settings, Texts_fill_the_buffer_of_the_setting_and_no_more) {
    constexpr SettingAccess kSsid = {OplKey::WirelessSSID, kNoWords, 66};
    constexpr size_t kUnits = 33;
    constexpr WCHAR kGuard = 0x5A5A;
    struct TextCase {
        std::string answer;
        WideText text;
    };
    const TextCase cases[] = {
        {"0000,Key=home;", TEXT("home")},
        {"0000,Key=" + std::string(70, 'x') + ";", WideText(32, 'x')},
        {"0000,Key=a\x1d"
         "b;",
         TEXT("a;b")},
        {"0000,Key=;", {}},
        {"0000,Key=(null);", {}},
    };
    for (const TextCase& c : cases) {
        std::vector<WCHAR> buffer(kUnits + 1, kGuard);
        EXPECT_TRUE(Read(ReadText, kSsid, c.answer, buffer.data())) << c.answer;
        EXPECT_EQ(WideText(buffer.data()), c.text) << c.answer;
        EXPECT_EQ(buffer[kUnits], kGuard) << c.answer;
        EXPECT_EQ(GetLastError(), 0u);
    }

    WCHAR old[kUnits] = {'o', 'l', 'd'};
    EXPECT_FALSE(Read(ReadText, kSsid, "0000,Key;", old));
    EXPECT_EQ(old[0], 0);
    EXPECT_EQ(GetLastError(), SDK_ERROR_BAD_REPLY);
}

TEST_F(Settings, Words_become_numbers_and_unknown_words_leave_the_output_alone) {
    constexpr SettingAccess kSetting = {OplKey::DisplayLanguage, kLanguage, 0};
    struct WordCase {
        const char* reply;
        uint32_t value;
        uint32_t error;
    };
    for (const WordCase& c : {WordCase{"0000,Key=CastilianSpanish;", 12, 0},
                              {"0000,Key=Klingon;", 77, ERROR_INVALID_PARAMETER},
                              {"0000,Key=;", 77, ERROR_INVALID_PARAMETER},
                              {"0000,Key;", 77, SDK_ERROR_BAD_REPLY},
                              {"3400,unknown;", 77, ERROR_BAD_COMMAND}}) {
        uint32_t value = 77;
        EXPECT_EQ(Read(ReadEnum, kSetting, c.reply, &value), c.error == 0) << c.reply;
        EXPECT_EQ(value, c.value) << c.reply;
        EXPECT_EQ(GetLastError(), c.error) << c.reply;
        EXPECT_EQ(sdk_.lastBadResponse, c.error == 0 ? "" : c.reply);
    }
}

TEST_F(Settings, Addresses_are_four_bytes_in_the_order_of_the_wire) {
    struct AddressCase {
        std::string reply;
        std::vector<uint8_t> address;
        uint32_t error;
    };
    const AddressCase cases[] = {
        {"0000,Key#4=\xC0\xA8\x00\x01;"s, {192, 168, 0, 1}, 0},
        {"0000,Key#4=;&?=;"s, {';', '&', '?', '='}, 0},
        {"0000,Key#6=\x01\x02\x03\x04\x05\x06;"s, {0, 0, 0, 0}, SDK_ERROR_UNEXPECTED_REPLY},
        {"0000,Key#0=;"s, {0, 0, 0, 0}, SDK_ERROR_UNEXPECTED_REPLY},
        {"0000,Key=192;"s, {0, 0, 0, 0}, SDK_ERROR_BAD_REPLY},
    };
    for (const AddressCase& c : cases) {
        std::vector<uint8_t> address(4, 9);
        EXPECT_EQ(Read(ReadAddress, Plain(OplKey::StaticIPAddress), c.reply, address.data()), c.error == 0);
        EXPECT_EQ(address, c.address) << c.reply;
        EXPECT_EQ(GetLastError(), c.error) << c.reply;
    }
}

TEST_F(Settings, Setters_send_the_form_that_the_key_wants) {
    using Sent = std::vector<std::string>;
    const SettingAccess language = {OplKey::DisplayLanguage, kLanguage, 0};
    EXPECT_EQ(Write(WriteEnum, language, uint32_t{11}),
              Sent{"DeviceSettings.System.Language=BokmalNorwegian;"});
    EXPECT_EQ(Write(WriteBool, Plain(OplKey::FaxBackup), uint8_t{2}), Sent{"DeviceSettings.Fax.Backup=YES;"});
    EXPECT_EQ(Write(WriteU8, Plain(OplKey::FaxRedials), uint8_t{255}),
              Sent{"DeviceSettings.Fax.Redials=255;"});
    EXPECT_EQ(Write(WriteU8, Plain(OplKey::PhotoCopies), uint8_t{0xF6}),
              Sent{"DeviceSettings.Photo.Quantity=246;"});
    EXPECT_EQ(Write(WriteS8, Plain(OplKey::CopyBrightness), int8_t{-2}),
              Sent{"DeviceSettings.Copy.Brightness=-2;"});
    EXPECT_EQ(Write(WriteU16, Plain(OplKey::CopySizeScale), uint16_t{400}),
              Sent{"DeviceSettings.Copy.SizeScale=400;"});
    EXPECT_EQ(Write(WriteText, Plain(OplKey::FaxNum), TEXT("1;2")),
              Sent{"DeviceSettings.Fax.UserInfo.FaxNumber=1\x1d"
                   "2;"});
    EXPECT_EQ(Write(WriteText, Plain(OplKey::FaxNum), TEXT("")),
              Sent{"DeviceSettings.Fax.UserInfo.FaxNumber=;"});
    EXPECT_EQ(Write(WriteAddress, Plain(OplKey::StaticIPAddress), uint32_t{0x0100A8C0}),
              Sent{"DeviceNetwork.WiFiSettings.TCP_Configuration.Static.IP_Address#4=\xC0\xA8\x00\x01;"s});
}

TEST_F(Settings, Setters_send_nothing_for_what_has_no_form) {
    printer_.Answer("0000,Key=1;");
    sdk_.lastBadResponse = "kept";
    EXPECT_FALSE(WriteEnum(sdk_, {OplKey::DisplayLanguage, kLanguage, 0}, 15, kTimeoutMs));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    SetLastError(0);
    EXPECT_FALSE(WriteText(sdk_, Plain(OplKey::FaxNum), nullptr, kTimeoutMs));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_TRUE(printer_.Requests().empty());
    EXPECT_EQ(sdk_.lastBadResponse, "kept");
}

TEST_F(Settings, Maintenance_counts_as_started_on_the_answer_96_alone) {
    struct MaintenanceCase {
        const char* reply;
        bool started;
        uint32_t error;
        uint32_t number;
    };
    for (const MaintenanceCase& c : {MaintenanceCase{"0096,Maintenance=001;", true, 0, 96},
                                     {"0095,Maintenance=001;", false, 0, 95},
                                     {"Maintenance=001;", false, SDK_ERROR_BAD_REPLY, 0},
                                     {"1999,Maintenance=001;", false, ERROR_BUSY, 1999}}) {
        printer_.Answer(c.reply);
        SetLastError(ERROR_ACCESS_DENIED);
        EXPECT_EQ(StartMaintenance(sdk_, OplWord::CalibrateHead), c.started) << c.reply;
        EXPECT_EQ(GetLastError(), c.error) << c.reply;
        EXPECT_EQ(sdk_.lastResponseNum, c.number) << c.reply;
        EXPECT_EQ(sdk_.lastBadResponse, c.error == 0 ? "" : c.reply);
        EXPECT_EQ(printer_.Requests(), std::vector{"Maintenance=001?"s});
    }
    for (const bool thoroughly : {false, true}) {
        printer_.Answer("0096,Maintenance;");
        EXPECT_TRUE(StartCleanHead(sdk_, thoroughly));
        EXPECT_EQ(printer_.Requests(), std::vector{thoroughly ? "Maintenance=004?"s : "Maintenance=003?"s});
    }
}

}  // namespace
