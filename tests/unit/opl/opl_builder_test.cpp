#include "opl/opl_builder.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "opl/value_escape.h"

namespace {

TEST(OPLBuilder, Numbers_have_the_width_and_the_sign_of_their_key) {
    std::string out;
    opl::OPLBuilder().AppendSetInt(out, opl::Key::FaxRedials, INT32_MIN);
    opl::OPLBuilder().AppendSetInt(out, opl::Key::DeviceTimeYear, 0xFFFF);
    EXPECT_EQ(out, "DeviceSettings.Fax.Redials=-2147483648;DeviceSettings.System.Time.Year=65535;");
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
