#include "opl/opl_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "opl/value_escape.h"
#include "opl/vocabulary.h"

namespace {

std::string SetInt(OplKey key, int32_t value) {
    std::string out;
    OPLBuilder().AppendSetInt(out, key, value);
    return out.substr(KeyText(key).size());
}

TEST(OPLBuilder, Numbers_have_the_width_and_the_sign_of_their_key) {
    EXPECT_EQ(SetInt(OplKey::CopySizeScale, 400), "=400;");
    EXPECT_EQ(SetInt(OplKey::FaxRedials, INT32_MIN), "=-2147483648;");
    EXPECT_EQ(SetInt(OplKey::CopyBrightness, 0xF6), "=-10;");
    EXPECT_EQ(SetInt(OplKey::PhotoCopies, static_cast<int8_t>(0xF6)), "=246;");
    EXPECT_EQ(SetInt(OplKey::DeviceTimeYear, 0xFFFF), "=65535;");
}

TEST(ValueEscape, Exchanges_the_seven_structure_characters_with_their_codes_and_keeps_the_rest) {
    constexpr std::string_view kFrom = "#&,.;=?\x19\x1A\x1B\x1C\x1D\x1E\x1F";
    constexpr std::string_view kTo = "\x19\x1A\x1B\x1C\x1D\x1E\x1F#&,.;=?";
    for (int byte = 0; byte < 256; ++byte) {
        const size_t place = kFrom.find(static_cast<char>(byte));
        const char mapped = place != std::string_view::npos ? kTo[place] : static_cast<char>(byte);
        EXPECT_EQ(opl::EscapeByte(static_cast<char>(byte)), mapped) << byte;
    }
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
