// Ports, drivers and printers as a set-up program installs them through the library.
#include "installation.h"
#include "installed_printer.h"

namespace {

constexpr char kInf[] =
    "[Version]\nSignature=\"$Windows NT$\"\nClass=Printer\n[Manufacturer]\nZR=Models\n"
    "[Models]\n\"Model 32\"=Model_32\n[Model_32]\nCopyFiles=@DRV.DLL\n";

class Installing : public testing::Test {
  protected:
    Installing() {
        const std::filesystem::path folder = std::getenv("KESTREL_TEST_FOLDER");
        std::ofstream(folder / "with blank.inf", std::ios::binary) << kInf;
        inf_ = Widened((folder / "with blank.inf").string());
    }

    Installation installation_;
    WideText inf_;
};

TEST_F(Installing, A_network_port_is_named_for_its_address_and_added) {
    const std::tuple<WideText, WideText, WideText> rows[] = {
        {TEXT(""), TEXT("192.168.0.20"), TEXT("ZRIJT_192.168.0.20")},
        {TEXT(""), TEXT("printer.example"), TEXT("printer.example")},
        {TEXT("Office port"), TEXT("192.168.0.21"), TEXT("Office port")},
    };
    for (const auto& [wanted, host, name] : rows) {
        kestrel_char port[64] = {};
        wanted.copy(port, wanted.size());
        EXPECT_EQ(kDone, Ended(AddNetPort(host.c_str(), 9100, port)));
        EXPECT_EQ(name, port);
        EXPECT_TRUE(installation_.HasNetworkPort(name, host, 9100));
    }
}

TEST_F(Installing, Driver_printer_and_default_printer_are_asked_of_the_system) {
    const WCHAR* const model = TEXT("Model 32");
    EXPECT_TRUE(AddDriverFiles(inf_.c_str(), model)) << GetLastError();
    EXPECT_TRUE(installation_.HasDriver(inf_, model));
    EXPECT_TRUE(AddDriverInstance(TEXT("Home"), inf_.c_str(), model, TEXT("LPT1:"), false));
    EXPECT_TRUE(installation_.HasPrinter(TEXT("Home"), inf_, model, TEXT("LPT1:")));
    EXPECT_FALSE(installation_.IsDefault(TEXT("Home")));
    EXPECT_TRUE(AddDriverInstance(TEXT("Office"), inf_.c_str(), model, TEXT("LPT2:"), true));
    EXPECT_TRUE(installation_.HasPrinter(TEXT("Office"), inf_, model, TEXT("LPT2:")));
    EXPECT_TRUE(installation_.IsDefault(TEXT("Office")));
}

}  // namespace
