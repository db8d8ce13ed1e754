// The tables of words and the catalogue of settings: what a wrong row would break.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <string>

#include "opl/vocabulary.h"
#include "settings/catalogue.h"

namespace {

struct NamedTable {
    const char* name;
    const EnumEntry* entries;
    size_t size;
};

// Sizes are counted from the device's documentation, not from the tables.
constexpr NamedTable kTables[] = {
    {"language", kLanguage, 15},
    {"restore scope", kRestoreScope, 2},
    {"camera mode", kCameraMode, 2},
    {"image scaling", kImageScaling, 2},
    {"answer mode", kAnswerMode, 3},
    {"wireless region", kWirelessRegion, 8},
    {"wireless mode", kWirelessMode, 2},
    {"authentication", kAuthentication, 2},
    {"security type", kSecurityType, 7},
    {"address method", kAddressMethod, 3},
    {"copy quality", kCopyQuality, 3},
    {"copy rendering", kCopyRendering, 2},
    {"copy output", kCopyOutput, 4},
    {"photo quality", kPhotoQuality, 3},
    {"photo rendering", kPhotoRendering, 2},
    {"photo mode", kPhotoMode, 2},
    {"layout", kLayout, 9},
    {"file view", kFileView, 7},
    {"fax mode", kFaxMode, 6},
    {"fax speed", kFaxSpeed, 3},
    {"dialing", kDialing, 2},
    {"address type", kAddressType, 3},
    {"scan what", kScanWhat, 2},
    {"scan to", kScanTo, 3},
    {"image device link", kImageDeviceLink, 4},
    {"wireless state", kWirelessState, 8},
};

TEST(ValueTables, Every_word_and_every_number_leads_to_the_other) {
    for (const NamedTable& table : kTables) {
        SCOPED_TRACE(table.name);
        size_t size = 0;
        for (const EnumEntry* entry = table.entries; entry->name != nullptr; ++entry, ++size) {
            EXPECT_EQ(FindByName(table.entries, entry->name), entry);
            EXPECT_EQ(FindByValue(table.entries, entry->value), entry);
            EXPECT_LT(entry->value, table.size) << entry->name;
        }
        EXPECT_EQ(size, table.size);
        EXPECT_EQ(FindByValue(table.entries, static_cast<uint32_t>(table.size)), nullptr);
        EXPECT_EQ(FindByName(table.entries, ""), nullptr);
    }
}

TEST(ValueTables, Words_are_compared_letter_for_letter) {
    EXPECT_EQ(FindByName(kFaxMode, "fine_black"), nullptr);
    EXPECT_EQ(FindByName(kWirelessRegion, "Japan_MK"), nullptr);
    EXPECT_EQ(FindByName(kWirelessRegion, "Japan_MKK1")->value, 6u);
    EXPECT_EQ(FindByName(kLanguage, std::string_view("Dutch\0", 6)), nullptr);
}

// The numbers are a contract with programs that were compiled long ago.
TEST(ValueTables, Numbers_stay_what_callers_were_compiled_with) {
    struct Pin {
        const EnumEntry* table;
        const char* word;
        uint32_t value;
    };
    constexpr Pin kPins[] = {
        {kLanguage, "English", 0},
        {kLanguage, "CanadianFrench", 10},
        {kLanguage, "BokmalNorwegian", 11},
        {kLanguage, "CastilianSpanish", 12},
        {kLanguage, "BrazilianPortuguese", 14},
        {kRestoreScope, "Network", 1},
        {kCameraMode, "Nominal", 1},
        {kImageScaling, "Fill", 1},
        {kAnswerMode, "Answering_Machine", 1},
        {kWirelessRegion, "MostofEurope_ETSI", 2},
        {kWirelessMode, "Infrastructure", 1},
        {kAuthentication, "SHKey", 1},
        {kSecurityType, "WPA2PSK_AES", 6},
        {kAddressMethod, "DHCP", 2},
        {kCopyQuality, "Presentation", 2},
        {kCopyRendering, "Color", 1},
        {kCopyOutput, "Scale_Percentage", 2},
        {kPhotoQuality, "Presentation", 2},
        {kPhotoRendering, "Color", 0},
        {kPhotoMode, "FixedSize", 1},
        {kLayout, "9_prints", 5},
        {kLayout, "4x4Poster", 8},
        {kFileView, "Tagged_Images", 6},
        {kFaxMode, "Draft_Color", 4},
        {kFaxSpeed, "V_37__14pt4K_BAUD", 1},
        {kDialing, "Pulse", 1},
        {kAddressType, "(null)", 0},
        {kScanWhat, "Photo", 1},
        {kScanTo, "Memory_Card", 2},
        {kImageDeviceLink, "PictBridge", 2},
        {kWirelessState, "ErrorInitializingRadio", 6},
    };
    for (const Pin& pin : kPins) {
        const EnumEntry* const entry = FindByName(pin.table, pin.word);
        ASSERT_NE(entry, nullptr) << pin.word;
        EXPECT_EQ(entry->value, pin.value) << pin.word;
    }
}

bool IsOdd(const SettingRow& row) {
    return row.index >= 0 || row.name == "device.restore-defaults" || row.name == "device.camera-mode";
}

TEST(Catalogue, Has_the_getters_and_setters_of_the_interface) {
    std::set<std::string_view> getters;
    std::set<std::string_view> setters;
    for (const SettingRow& row : Catalogue()) {
        EXPECT_TRUE(row.getter != nullptr || row.setter != nullptr) << row.name;
        if (IsOdd(row)) continue;
        if (row.getter != nullptr) {
            EXPECT_TRUE(getters.insert(row.getter).second) << row.getter;
        }
        if (row.setter != nullptr) {
            EXPECT_TRUE(setters.insert(row.setter).second) << row.setter;
        }
    }
    EXPECT_EQ(getters.size(), 80u);
    EXPECT_EQ(setters.size(), 63u);
    EXPECT_EQ(std::ranges::count_if(Catalogue(), IsOdd), 6);
}

TEST(Catalogue, Gives_every_setting_a_name_of_its_own) {
    std::set<std::string_view> names;
    std::set<std::string_view> keys;
    for (const SettingRow& row : Catalogue()) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_TRUE(keys.insert(row.key).second) << row.key;
        EXPECT_NE(row.name.find('.'), std::string_view::npos) << row.name;
        EXPECT_TRUE(std::ranges::all_of(row.name, [](unsigned char c) {
            return std::islower(c) || std::isdigit(c) || c == '.' || c == '-';
        })) << row.name;
        EXPECT_FALSE(row.about.empty()) << row.name;
    }
}

std::set<OplFormatter> FormattersOf(SettingType type) {
    switch (type) {
        case SettingType::kBool:
            return {OplFormatter::YesNoValue};
        case SettingType::kEnum:
        case SettingType::kText:
            return {OplFormatter::TextValue};
        case SettingType::kAddress:
            return {OplFormatter::AddressValue};
        case SettingType::kS8:
            return {OplFormatter::SignedByteValue};
        default:
            return {OplFormatter::IntValue, OplFormatter::ByteValue};
    }
}

// A row and its key are written in two files; a setter sent with the form of another type would be refused
// or, worse, understood.
TEST(Catalogue, Agrees_with_the_vocabulary_on_access_and_form) {
    size_t withKey = 0;
    for (const SettingRow& row : Catalogue()) {
        SCOPED_TRACE(row.name);
        const auto key = std::ranges::find(kOplKeys, row.key, &OplKeyRow::text);
        if (key == std::end(kOplKeys)) continue;
        ++withKey;
        EXPECT_EQ(key->CanQuery(), row.getter != nullptr);
        EXPECT_EQ(key->CanSet(), row.setter != nullptr);
        if (row.setter != nullptr) {
            EXPECT_TRUE(FormattersOf(row.writeType).contains(key->formatter));
        }
        EXPECT_EQ(row.type == SettingType::kEnum, !row.words.empty());
        EXPECT_EQ(row.type == SettingType::kText, row.bufferBytes != 0);
    }
    EXPECT_EQ(withKey + 1, Catalogue().size()) << "all but the photo tray have a key";
}

// Callers do not pass the size of their buffers: a byte more than documented here would overrun them.
TEST(Catalogue, Keeps_the_buffer_sizes_of_texts) {
    const std::map<std::string_view, uint32_t> sizes = {
        {"GetServiceNumber", 16},
        {"GetRPID", 44},
        {"GetRevNumber", 10},
        {"GetServiceTag", 16},
        {"GetFriendlyName", 128},
        {"GetFaxSendersName", 80},
        {"GetFaxPhoneNum", 100},
        {"GetFaxNum", 100},
        {"GetWirelessSSID", 66},
        {"GetWirelessSecurityKey", 66},
        {"GetWirelessSecurityPassPhrase", 130},
        {"GetWirelessRSSI", 34},
    };
    std::set<std::string_view> seen;
    for (const SettingRow& row : Catalogue()) {
        if (row.type != SettingType::kText) continue;
        ASSERT_TRUE(sizes.contains(row.getter)) << row.getter;
        EXPECT_EQ(row.bufferBytes, sizes.at(row.getter)) << row.getter;
        seen.insert(row.getter);
    }
    EXPECT_EQ(seen.size(), sizes.size());
}

}  // namespace
