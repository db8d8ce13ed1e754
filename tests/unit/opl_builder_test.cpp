#include "opl/opl_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "opl/value_escape.h"
#include "opl/vocabulary.h"

namespace {

using namespace std::string_literals;

const OPLBuilder builder;

std::string SetInt(OplKey key, int32_t value) {
    std::string out;
    builder.AppendSetInt(out, key, value);
    return out.substr(KeyText(key).size());
}

TEST(OPLBuilder, Numbers_have_the_width_and_the_sign_of_their_key) {
    const struct {
        OplKey key;
        int32_t value;
        std::string_view expected;
    } cases[] = {
        {OplKey::FaxRedials, 3, "=3;"},
        {OplKey::CopySizeScale, 400, "=400;"},
        {OplKey::FaxRedials, INT32_MIN, "=-2147483648;"},
        {OplKey::CopyBrightness, 0xF6, "=-10;"},
        {OplKey::CopyBrightness, -2, "=-2;"},
        {OplKey::PhotoCopies, 0xF6, "=246;"},
        {OplKey::PhotoCopies, static_cast<int8_t>(0xF6), "=246;"},
        {OplKey::DeviceTimeYear, 2012, "=2012;"},
        {OplKey::DeviceTimeYear, 0xFFFF, "=65535;"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(SetInt(row.key, row.value), row.expected) << KeyText(row.key) << ' ' << row.value;
}

TEST(OPLBuilder, Booleans_use_the_words_of_their_key) {
    std::string out;
    builder.AppendSetBool(out, OplKey::CallWaiting, true);
    builder.AppendSetBool(out, OplKey::CallWaiting, false);
    builder.AppendSetBool(out, OplKey::Cache, true);
    builder.AppendSetBool(out, OplKey::Cache, false);
    EXPECT_EQ(out,
              "DeviceSettings.Fax.CallWaiting=YES;DeviceSettings.Fax.CallWaiting=NO;"
              "ZRCache=TRUE;ZRCache=FALSE;");
}

TEST(OPLBuilder, Text_is_escaped_and_an_address_is_not) {
    std::string out;
    builder.AppendSetText(out, OplKey::UpgradeFW, "a;b=c");
    EXPECT_EQ(out,
              "ZRUpgradeFW=a\x1D"
              "b\x1E"
              "c;");

    out.clear();
    builder.AppendSetAddress(out, OplKey::StaticIPAddress, 0x0100A8C0);
    EXPECT_EQ(out, "DeviceNetwork.WiFiSettings.TCP_Configuration.Static.IP_Address#4=\xC0\xA8\x00\x01;"s);

    out.clear();
    builder.AppendSetAddress(out, OplKey::PingAddress, 0x3D3B2623);
    EXPECT_EQ(out, "DeviceNetwork.Network.SetPing.Ip_Addr[0]#4=#&;=;");
}

TEST(OPLBuilder, Operations_append_in_call_order) {
    std::string out = "kept;";
    builder.AppendSetInt(out, OplKey::PingCount, 4);
    builder.AppendQuery(out, OplKey::FaxRedials);
    builder.AppendWord(out, OplWord::GetStatus);
    builder.AppendCleanHead(out, false);
    builder.AppendCleanHead(out, true);
    EXPECT_EQ(out,
              "kept;DeviceNetwork.Network.SetPing.NumOfPing=4;DeviceSettings.Fax.Redials?ZRGetStatus?"
              "Maintenance=003?Maintenance=004?");
}

TEST(OPLBuilder, Record_fields_carry_their_index) {
    std::string out;
    builder.AppendRecordQuery(out, OplRecordList::SpeedDial, 2, OplRecordField::Name);
    builder.AppendRecordSet(out, OplRecordList::OneTouch, 59, OplRecordField::AddressType, "Fax");
    builder.AppendRecordSet(out, OplRecordList::OneTouch, 0, OplRecordField::Address, "a.b");
    EXPECT_EQ(out,
              "DeviceSettings.AddressBook.SpeedDialRecords.NamedSingleEntry[2].Name?"
              "DeviceSettings.AddressBook.OneTouchDialRecords.NamedSingleEntry[59].AddressType=Fax;"
              "DeviceSettings.AddressBook.OneTouchDialRecords.NamedSingleEntry[0].Address=a\x1C"
              "b;");
}

TEST(ValueEscape, Exchanges_the_seven_structure_characters_with_their_codes_and_keeps_the_rest) {
    std::map<int, int> expected;
    for (int byte = 0; byte < 256; ++byte)
        expected[byte] = byte;
    for (const auto& [character, code] : std::array<std::pair<int, int>, 7>{
             {{'#', 0x19}, {'&', 0x1A}, {',', 0x1B}, {'.', 0x1C}, {';', 0x1D}, {'=', 0x1E}, {'?', 0x1F}}}) {
        expected[character] = code;
        expected[code] = character;
    }
    for (const auto& [byte, mapped] : expected)
        EXPECT_EQ(static_cast<unsigned char>(opl::EscapeByte(static_cast<char>(byte))), mapped);
}

// Rows were typed by hand: these counts per form find a row lost, doubled or given another form.
TEST(Vocabulary, Holds_as_many_keys_of_every_form_as_the_device_knows) {
    using enum OplAccess;
    using enum OplFormatter;
    const std::map<std::pair<OplAccess, OplFormatter>, int> expected = {
        {{ReadWrite, YesNoValue}, 16},  {{ReadWrite, TextValue}, 33},     {{WriteOnly, TextValue}, 2 + 1},
        {{ReadWrite, IntValue}, 8},     {{WriteOnly, IntValue}, 1},       {{ReadWrite, ByteValue}, 2},
        {{WriteOnly, ByteValue}, 6},    {{ReadWrite, WordValue}, 1},      {{ReadWrite, SignedByteValue}, 2},
        {{ReadWrite, AddressValue}, 7}, {{WriteOnly, AddressValue}, 1},   {{WriteOnly, YesNoValue}, 1},
        {{ReadOnly, None}, 34},         {{WriteOnly, TrueFalseValue}, 1},
    };
    std::map<std::pair<OplAccess, OplFormatter>, int> counted;
    std::map<std::string_view, int> texts;
    for (const OplKeyRow& row : kOplKeys) {
        ++counted[{row.access, row.formatter}];
        ++texts[row.text];
    }
    EXPECT_EQ(counted, expected);
    EXPECT_EQ(texts.size(), kOplKeyCount) << "a key stands twice";
    EXPECT_EQ(kOplWordCount, 15u);
    EXPECT_TRUE(std::ranges::all_of(kOplWords, [](std::string_view word) { return word.ends_with('?'); }));
}

}  // namespace
