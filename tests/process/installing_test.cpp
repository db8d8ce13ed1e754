// The tool that installs drivers and printers from set-up information files, as the system's own does on
// Windows.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "child_process.h"
#include "spooler_value.h"

namespace {

namespace fs = std::filesystem;

constexpr char kInf[] = R"(; Printers of two machine kinds
[Version]
Signature   = "$Windows NT$"
Class       = Printer
Provider    = %Maker%

[Manufacturer]
%Maker% = Models, NTx86, NTamd64

[Models.NTx86]
"Model 32" = Model_32, USBPRINT\Model32

[Models.NTamd64]
%Nine% = Model_9900, \
         USBPRINT\Model9900      ; continued

[Model_9900]
CopyFiles   = @DRV.DLL
DataSection = Shared
DriverFile  = "DRV.DLL"

[shared]
DataFile        = DRV.INI
LanguageMonitor = %Monitor%

[Model_32]
CopyFiles = @OLD.DLL

[Strings]
Maker   = "ZR"
Nine    = "ZR ""Nine"" 9900"
Monitor = "ZR Monitor,MON.DLL"
)";

std::string Utf16(const std::string& text) {
    std::string bytes = "\xFF\xFE";
    for (const char c : text)
        bytes.append({c, '\0'});
    return bytes;
}

class InstallTool : public testing::Test {
  protected:
    std::string Write(const std::string& name, const std::string& bytes) const {
        const fs::path path = fs::path(std::getenv("WINPORT_HOME")) / name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path.string();
    }

    static ProgramResult Run(std::vector<std::string> words) {
        words.insert(words.begin(), {"/bin/sh", "-c", "exec \"$0\" \"$@\" 2>&1", INSTALL_TOOL});
        return RunProgram(words);
    }
    static ProgramResult RunEntry(std::vector<std::string> words) {
        words.insert(words.begin(), "printui.dll,PrintUIEntry");
        return Run(words);
    }
};

TEST_F(InstallTool, A_driver_is_taken_from_every_encoding_and_from_shared_sections) {
    const WideText nine = TEXT("ZR \"Nine\" 9900");
    for (const std::string& bytes : {std::string(kInf), Utf16(kInf), "\xEF\xBB\xBF" + std::string(kInf)}) {
        const std::string inf = Write("a.inf", bytes);
        EXPECT_EQ(RunEntry({"/ia", "/f", inf, "/m", "zr \"nine\" 9900"}).code, 0);
        EXPECT_EQ(DriverText(nine, TEXT("Driver")), "DRV.DLL");
        EXPECT_EQ(DriverText(nine, TEXT("Data File")), "DRV.INI");
        EXPECT_EQ(DriverText(nine, TEXT("Configuration File")), "DRV.DLL");
        EXPECT_EQ(DriverText(nine, TEXT("Monitor")), "ZR Monitor");
        const WCHAR* const drivers = TEXT("SYSTEM\\CurrentControlSet\\Control\\Print\\Environments");
        EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, drivers), 0);
    }
}

TEST_F(InstallTool, An_installed_driver_is_kept_when_asked_and_else_replaced) {
    const WideText model = TEXT("Model 32");
    const std::string inf = Write("a.inf", kInf);
    EXPECT_EQ(RunEntry({"/ia", "/f", inf, "/m", "Model 32"}).code, 0);
    EXPECT_EQ(DriverText(model, TEXT("Driver")), "Model_32");
    Write("a.inf", std::string(kInf) + "[Model_32]\nDriverFile=NEW.DLL\n");
    EXPECT_EQ(RunEntry({"/if", "/u", "/f", inf, "/m", "Model 32", "/r", "USB001", "/b", "One"}).code, 0);
    EXPECT_EQ(DriverText(model, TEXT("Driver")), "Model_32");
    EXPECT_EQ(RunEntry({"/if", "/f", inf, "/m", "Model 32", "/r", "LPT1:"}).code, 0);
    EXPECT_EQ(DriverText(model, TEXT("Driver")), "NEW.DLL");
    EXPECT_EQ(PrinterText(TEXT("One"), TEXT("Port")), "USB001");
    EXPECT_EQ(PrinterText(model, TEXT("Port")), "LPT1:");
}

TEST_F(InstallTool, Refusals_say_what_happened_and_change_nothing) {
    const std::string inf = Write("a.inf", kInf);
    const std::string home = std::getenv("WINPORT_HOME");
    const std::string other = Write("fax.inf", "[Version]\nSignature=$Chicago$\nClass=Fax\n");
    const struct {
        std::vector<std::string> words;
        int code;
        const char* text;
    } rows[] = {
        {{"/ia", "/f", home + "/none.inf", "/m", "Model 32"}, 1, "no such file"},
        {{"/ia", "/f", home, "/m", "Model 32"}, 1, "folder"},
        {{"/ia", "/f", INSTALL_TOOL, "/m", "Model 32"}, 1, "not a text"},
        {{"/ia", "/f", Write("s.inf", "[S]\na=b\n"), "/m", "Model 32"}, 1, "no set-up information file"},
        {{"/ia", "/f", other, "/m", "Model 32"}, 1, "not about printers"},
        {{"/ia", "/f", inf, "/m", "Model 33"}, 1, "\"Model 32\""},
        {{"/if", "/f", inf, "/m", "Model 32", "/r", "IP_10.0.0.1", "/b", "New"}, 1, "no port"},
        {{"/y", "/n", "Nobody"}, 1, "no printer"},
        {{"/q", "/y", "/n", "Nobody"}, 1, ""},
        {{"/ia", "/f", inf}, 2, "/m"},
        {{"/ia", "/xyz"}, 2, "/xyz"},
        {{"/ia", "/if"}, 2, "more than one"},
        {{"/f", inf}, 2, "none of"},
    };
    for (const auto& row : rows) {
        const ProgramResult result = RunEntry(row.words);
        EXPECT_EQ(result.code, row.code) << row.words.back();
        EXPECT_NE(result.output.find(row.text), std::string::npos) << result.output;
        EXPECT_EQ(result.output.empty(), *row.text == '\0') << result.output;
    }
    EXPECT_EQ(Run({"shell32.dll,Control_RunDLL"}).code, 2);
    EXPECT_EQ(DriverText(TEXT("Model 32"), TEXT("Driver")), "");
    EXPECT_EQ(PrinterText(TEXT("New"), TEXT("Port")), "");
}

}  // namespace
