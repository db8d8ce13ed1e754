// The words of the enumerations; what the rows owe to each other does not compile otherwise.
#include <gtest/gtest.h>

#include <string_view>

#include "catalogue/value_tables.h"

namespace catalogue {
namespace {

// Sizes are counted from the device's documentation, not from the tables.
constexpr struct {
    const EnumEntry* entries;
    uint32_t size;
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

TEST(ValueTables, Have_the_words_and_numbers_that_callers_know) {
    for (const auto& table : kTables) {
        SCOPED_TRACE(table.word);
        EXPECT_NE(FindByValue(table.entries, table.size - 1), nullptr);
        EXPECT_EQ(FindByValue(table.entries, table.size), nullptr);
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

}  // namespace
}  // namespace catalogue
