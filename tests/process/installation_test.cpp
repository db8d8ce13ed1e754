// Ports, drivers and printers as a set-up program installs them through the library.
#include "installation.h"

#include <gtest/gtest.h>
#include <kestrel/sdk.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

constexpr char kInf[] =
    "[Version]\nSignature=\"$Windows NT$\"\nClass=Printer\n[Manufacturer]\nZR=Models\n"
    "[Models]\n\"Model 32\"=Model_32\n[Model_32]\nCopyFiles=@DRV.DLL\n";

class Installing : public testing::Test {
  protected:
    Installing() {
        const std::filesystem::path file =
            std::filesystem::path(std::getenv("KESTREL_TEST_FOLDER")) / "with blank.inf";
        std::ofstream(file, std::ios::binary) << kInf;
        const std::string path = file.string();
        inf_.assign(path.begin(), path.end());
    }

    Installation installation_;
    WideText inf_;
};

TEST_F(Installing, A_network_port_is_named_for_its_address_and_added) {
    const struct {
        WideText wanted, host, name;
    } rows[] = {
        {TEXT(""), TEXT("192.168.0.20"), TEXT("ZRIJT_192.168.0.20")},
        {TEXT(""), TEXT("printer.example"), TEXT("printer.example")},
        {TEXT("Office port"), TEXT("192.168.0.21"), TEXT("Office port")},
    };
    for (const auto& row : rows) {
        kestrel_char port[64] = {};
        row.wanted.copy(port, row.wanted.size());
        EXPECT_TRUE(AddNetPort(row.host.c_str(), 9100, port)) << GetLastError();
        EXPECT_EQ(WideText(port), row.name);
        EXPECT_TRUE(installation_.HasNetworkPort(row.name, row.host, 9100));
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
