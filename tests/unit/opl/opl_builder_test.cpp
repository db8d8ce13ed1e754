#include "opl/opl_builder.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "opl/value_escape.h"
#include "opl/vocabulary.h"

using namespace opl;

namespace {

std::string SetInt(Key key, int32_t value) {
    std::string out;
    OPLBuilder().AppendSetInt(out, key, value);
    return out.substr(KeyText(key).size());
}

TEST(OPLBuilder, Numbers_have_the_width_and_the_sign_of_their_key) {
    EXPECT_EQ(SetInt(Key::CopySizeScale, 400), "=400;");
    EXPECT_EQ(SetInt(Key::FaxRedials, INT32_MIN), "=-2147483648;");
    EXPECT_EQ(SetInt(Key::CopyBrightness, 0xF6), "=-10;");
    EXPECT_EQ(SetInt(Key::PhotoCopies, static_cast<int8_t>(0xF6)), "=246;");
    EXPECT_EQ(SetInt(Key::DeviceTimeYear, 0xFFFF), "=65535;");
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

}  // namespace
