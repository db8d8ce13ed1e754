// What changes in the virtual printer by itself, with time or by its control file.
#include <algorithm>
#include <cstring>

#include "asked_printer.h"

namespace vprinter {
namespace {

using namespace std::literals;

class VprinterLiveDevice : public AskedPrinter {
  protected:
    uint32_t StatusNumber(size_t offset) {
        uint32_t number = 0;
        std::memcpy(&number, Ask("ZRGetStatus?").data() + "0000,ZRGetStatus#1316="sv.size() + offset,
                    sizeof(number));
        return number;
    }

    static std::string Escaped(std::string text) {
        std::ranges::replace(text, '.', '\x1C');
        return text;
    }
};

TEST_F(VprinterLiveDevice, A_control_file_of_the_same_time_and_size_is_known_by_its_text) {
    ASSERT_EQ(Control(R"({"*": {"ink.black": 10}})"), "");
    const auto time = std::filesystem::last_write_time(path_);
    Write(R"({"*": {"ink.black": 20}})");
    std::filesystem::last_write_time(path_, time);
    EXPECT_EQ(control_.Apply(model_, faults_, 0), "");
    EXPECT_EQ(model_.Value("ink.black"), "20");
}

TEST_F(VprinterLiveDevice, An_upgrade_takes_a_firmware_file_and_its_time) {
    // As the library sends it: escaped, in the ANSI code page, with either separator.
    const std::filesystem::path file = std::filesystem::path(path_) += u8"_\u20AC";
    std::string request = "ZRUpgradeFW=" + Escaped(path_) + "_\x80;";
    request[request.find_last_of("/\\")] = '\\';
    EXPECT_TRUE(Ask(request).starts_with("100113,"));
    for (const char* bad : {"", "ZRFW 1 9900.2210.420", "ZRFW 2 9900.2210.420\n", "ZRFW 1 9900.2210\n",
                            "ZRFW 1 8800.2210.420\n", "ZRFW 1 9900.2210.420x\n"}) {
        std::ofstream(file) << bad;
        EXPECT_TRUE(Ask(request).starts_with("100114,")) << bad;
    }
    std::ofstream(file) << "ZRFW 1 9900.2210.420\nand the rest";
    EXPECT_EQ(Ask(request), "0101,ZRUpgradeFW;");
    EXPECT_TRUE(Ask(request).starts_with("1999,"));
    std::filesystem::remove(file);
    tickMs_ += 2500;
    EXPECT_EQ(StatusNumber(8), 101u);
    EXPECT_EQ(StatusNumber(12), 50u);
    tickMs_ += 2500;
    EXPECT_EQ(Value("DeviceSettings.System.Version.Printer"), Escaped("9900.2210.420"));
    EXPECT_EQ(StatusNumber(12), 0xFFFFFFFFu);
    Ask("DeviceSettings.System.RestoreDefaults=All;");
    EXPECT_EQ(Value("DeviceSettings.System.Version.Lagoon"), "420");
}

}  // namespace
}  // namespace vprinter
