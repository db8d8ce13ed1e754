// The tables of words and the catalogue of settings: what a wrong row would break.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string_view>
#include <utility>

#include "settings/catalogue.h"

namespace {

// Sizes are counted from the device's documentation, not from the tables.
constexpr struct {
    const EnumEntry* entries;
    size_t size;
    const char* word;
    uint32_t value;  // a contract with programs that were compiled long ago
} kTables[] = {
    {kLanguage, 15, "CanadianFrench", 10},
    {kLanguage, 15, "BokmalNorwegian", 11},
    {kLanguage, 15, "BrazilianPortuguese", 14},
    {kRestoreScope, 2, "Network", 1},
    {kCameraMode, 2, "Nominal", 1},
    {kImageScaling, 2, "Fill", 1},
    {kAnswerMode, 3, "Answering_Machine", 1},
    {kWirelessRegion, 8, "MostofEurope_ETSI", 2},
    {kWirelessMode, 2, "Infrastructure", 1},
    {kAuthentication, 2, "SHKey", 1},
    {kSecurityType, 7, "WPA2PSK_AES", 6},
    {kAddressMethod, 3, "DHCP", 2},
    {kCopyQuality, 3, "Presentation", 2},
    {kCopyRendering, 2, "Color", 1},
    {kCopyOutput, 4, "Scale_Percentage", 2},
    {kPhotoQuality, 3, "Presentation", 2},
    {kPhotoRendering, 2, "Color", 0},
    {kPhotoMode, 2, "FixedSize", 1},
    {kLayout, 9, "9_prints", 5},
    {kLayout, 9, "4x4Poster", 8},
    {kFileView, 7, "Tagged_Images", 6},
    {kFaxMode, 6, "Draft_Color", 4},
    {kFaxSpeed, 3, "V_37__14pt4K_BAUD", 1},
    {kDialing, 2, "Pulse", 1},
    {kAddressType, 3, "(null)", 0},
    {kScanWhat, 2, "Photo", 1},
    {kScanTo, 3, "Memory_Card", 2},
    {kImageDeviceLink, 4, "PictBridge", 2},
    {kWirelessState, 8, "ErrorInitializingRadio", 6},
};

TEST(ValueTables, Every_word_and_every_number_leads_to_the_other_and_stays_what_callers_know) {
    for (const auto& table : kTables) {
        SCOPED_TRACE(table.word);
        size_t size = 0;
        for (const EnumEntry* entry = table.entries; entry->name != nullptr; ++entry, ++size) {
            EXPECT_EQ(FindByName(table.entries, entry->name), entry);
            EXPECT_EQ(FindByValue(table.entries, entry->value), entry);
            EXPECT_LT(entry->value, table.size) << entry->name;
        }
        EXPECT_EQ(size, table.size);
        EXPECT_EQ(FindByValue(table.entries, static_cast<uint32_t>(table.size)), nullptr);
        EXPECT_EQ(FindByName(table.entries, ""), nullptr);
        EXPECT_EQ(FindByName(table.entries, table.word), FindByValue(table.entries, table.value));
    }
}

TEST(ValueTables, Words_are_compared_letter_for_letter) {
    EXPECT_EQ(FindByName(kFaxMode, "fine_black"), nullptr);
    EXPECT_EQ(FindByName(kWirelessRegion, "Japan_MK"), nullptr);
    EXPECT_EQ(FindByName(kWirelessRegion, "Japan_MKK1")->value, 6u);
    EXPECT_EQ(FindByName(kLanguage, std::string_view("Dutch\0", 6)), nullptr);
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

// Callers do not pass the size of their buffers: a byte more than documented here would overrun them.
TEST(Catalogue, Keeps_the_buffer_sizes_of_texts) {
    std::set<std::pair<std::string_view, uint32_t>> sizes;
    for (const SettingRow& row : Catalogue())
        if (row.type == SettingType::kText) sizes.emplace(row.getter, row.bufferBytes);
    const std::set<std::pair<std::string_view, uint32_t>> expected = {
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
    EXPECT_EQ(sizes, expected);
}

}  // namespace
