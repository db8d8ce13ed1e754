#include "host/product_config.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <winspool.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/config_discovery.h"

using namespace host;

namespace {

using Path = std::filesystem::path;
using Config = CProductConfig;
using Getter = const WideText& (Config::*)() const;

struct Line {
    std::string_view section;
    std::string_view text;
    bool required;
    Getter getter = nullptr;  // of what follows the '='
};

constexpr std::string_view kJobControlDirectory = "Directory=ZR\\Jobs/Now";

// A complete file, line by line; sections are kept together.
constexpr Line kCompleteFile[] = {
    {"Printers", "ZR One", true},
    {"Network Printers", "ZR Net=x", true},
    {"L-Path Printers", "ZR L", false},
    {"L-Path Printers", "ZR M", false},
    {"C-Path Printers", "ZR C", false},
    {"Display Icons", "ZR One= -12abc", false},
    {"Printer Maintenance", "ZR One=1,2,3", false},
    {"Status Monitor", "Executable=ZRMUI.EXE", true, &Config::GetStatusMonitorExecutable},
    {"Status Monitor", "DisplayRegDir=Software\\ZR\\Display", true, &Config::GetDisplayRegDir},
    {"Status Monitor", "ProductRoot=ZRIJ", true, &Config::GetProductRoot},
    {"Job Control", kJobControlDirectory, true, &Config::GetJobControlDirectory},
    {"Job Control", "Filename=jobs.dat", true, &Config::GetJobControlFilename},
    {"ModelName For URL", "ZR One=zr-one", false},
    {"Diagnostic", "Directory=ZR\\Diagnostic", true, &Config::GetDiagnosticDirectory},
    {"Diagnostic", "Filename=diagnostic.txt", true, &Config::GetDiagnosticFilename},
    {"Logging", "Registry=Software\\ZR\\Logging", true, &Config::GetLoggingRegistry},
    {"FW Updater", "InstallRegDir=ZR\\Updater", true, &Config::GetFWUpdaterInstallRegDir},
    {"FW Updater", "Executable=updater.exe", true, &Config::GetFWUpdaterExecutable},
    {"Harbor Desk", "InstallRegDir=ZR\\Desk", true, &Config::GetHarborDeskInstallRegDir},
    {"Harbor Desk", "Executable=desk.exe", true, &Config::GetHarborDeskExecutable},
    {"Host ID", "RegKey=HostID", true, &Config::GetHostIdRegKey},
    {"Host ID", "RegDir=.DEFAULT\\ZR", true, &Config::GetHostIdRegDir},
    {"SDK", "Signature=ZRIJ", true, &Config::GetSignature},
    {"UIPSETTINGS", "UIPLANG=1031", false},
};

constexpr std::pair<Getter, const WCHAR*> kDerived[] = {
    {&Config::GetJobControlRoot, TEXT("ZR")},          {&Config::GetJobControlLeaf, TEXT("Now")},
    {&Config::GetUIPLibraryName, TEXT("ZRIJUIP.dll")}, {&Config::GetMUIName, TEXT("ZRIJMUI")},
    {&Config::GetHelpFileName, TEXT("ZRIJ.chm")},      {&Config::GetPREName, TEXT("ZRIJPRE")},
    {&Config::GetPREExecutable, TEXT("ZRIJPRE.exe")},
};

class ProductConfig : public testing::Test {
  protected:
    void TearDown() override { std::filesystem::remove(path_); }

    /// Loads the complete file into a new object, with `instead` in the place of one line.
    bool Load(std::string_view line = {}, std::string_view instead = {}) {
        std::ofstream file(path_, std::ios::binary);
        std::string_view section;
        for (const Line& row : kCompleteFile) {
            if (section != row.section) file << '[' << row.section << "]\r\n";
            section = row.section;
            file << (row.text == line ? instead : row.text) << "\r\n";
        }
        file.close();
        config_.emplace();
        return config_->Load(path_.string<WCHAR>());
    }

    const Path path_ = Path(std::getenv("KESTREL_TEST_FOLDER")) / "product.ini";
    std::optional<CProductConfig> config_;
};

}  // namespace

TEST_F(ProductConfig, A_complete_file_gives_every_value) {
    ASSERT_TRUE(Load());
    for (const Line& line : kCompleteFile) {
        if (line.getter == nullptr) continue;
        const std::string_view value = line.text.substr(line.text.find('=') + 1);
        EXPECT_EQ((*config_.*line.getter)(), WideText(value.begin(), value.end())) << line.text;
    }
    for (const auto& [getter, expected] : kDerived)
        EXPECT_EQ((*config_.*getter)(), expected);
    EXPECT_EQ(config_->GetUIPLanguage(), 1031);
}

TEST_F(ProductConfig, Each_list_answers_for_its_own_section_letter_for_letter) {
    ASSERT_TRUE(Load());
    EXPECT_TRUE(config_->IsPrinterDriver(TEXT("ZR One")));
    EXPECT_FALSE(config_->IsPrinterDriver(TEXT("zr one")));
    EXPECT_FALSE(config_->IsPrinterDriver(TEXT("ZR Net=x")));
    EXPECT_TRUE(config_->IsNetworkPrinterDriver(TEXT("ZR Net=x")));
    EXPECT_FALSE(config_->IsNetworkPrinterDriver(TEXT("ZR Net")));
    EXPECT_TRUE(config_->IsLPathPrinter(TEXT("ZR L")));
    EXPECT_TRUE(config_->IsLPathPrinter(TEXT("ZR M")));
    EXPECT_TRUE(config_->IsCPathPrinter(TEXT("ZR C")));
    EXPECT_FALSE(config_->IsCPathPrinter(TEXT("ZR L")));
}

TEST_F(ProductConfig, A_driver_without_entries_of_its_own_gets_the_defaults) {
    ASSERT_TRUE(Load());
    EXPECT_EQ(config_->GetDisplayIcon(TEXT("ZR One")), -12);
    EXPECT_EQ(config_->GetDisplayIcon(TEXT("ZR Two")), 4000);

    MaintenanceSettings settings;
    EXPECT_TRUE(config_->GetMaintenanceSettings(TEXT("ZR One"), settings));
    EXPECT_EQ(settings.values[0], 1);
    EXPECT_TRUE(config_->GetMaintenanceSettings(TEXT("ZR Two"), settings));
    EXPECT_EQ(settings.driver, TEXT("Unknown"));
    EXPECT_EQ(settings.values[0], 40);
    WideText model;
    EXPECT_TRUE(config_->GetModelNameForURL(TEXT("ZR One"), model));
    EXPECT_EQ(model, TEXT("zr-one"));
    EXPECT_FALSE(config_->GetModelNameForURL(TEXT("ZR Two"), model));
    EXPECT_EQ(model, TEXT("Unknown"));
}

TEST_F(ProductConfig, Exactly_the_required_lines_are_required) {
    for (const Line& line : kCompleteFile)
        EXPECT_EQ(Load(line.text), !line.required) << line.text;
    EXPECT_EQ(config_->GetUIPLanguage(), 1024) << "the user's, where the last line is missing";
}

TEST_F(ProductConfig, The_first_load_is_the_only_one_also_when_it_fails) {
    CProductConfig config;
    SetLastError(4711);
    EXPECT_FALSE(config.LoadForModule(nullptr));
    EXPECT_FALSE(config.IsLoaded());
    EXPECT_FALSE(config.Load(path_.string<WCHAR>()));
    EXPECT_EQ(GetLastError(), 4711u);
    EXPECT_TRUE(config.IsLoaded());

    ASSERT_TRUE(Load());
    EXPECT_TRUE(config.Load(path_.string<WCHAR>()));
    EXPECT_TRUE(config.LoadForModule(nullptr));
    EXPECT_EQ(config.GetSignature(), TEXT(""));
}

TEST_F(ProductConfig, The_job_control_directory_needs_a_first_and_a_last_component) {
    for (const std::string_view bad : {"Directory=Jobs", "Directory=\\Jobs", "Directory=ZR\\"})
        EXPECT_FALSE(Load(kJobControlDirectory, bad)) << bad;
    EXPECT_TRUE(Load(kJobControlDirectory, "Directory=ZR/Jobs"));
    EXPECT_EQ(config_->GetJobControlRoot(), TEXT("ZR"));
    EXPECT_TRUE(Load(kJobControlDirectory, "Directory=A/B\\C/D"));
    EXPECT_EQ(config_->GetJobControlRoot(), TEXT("A/B"));
    EXPECT_EQ(config_->GetJobControlLeaf(), TEXT("D"));
}

TEST(ProductConfigValues,
     Maintenance_values_are_read_as_far_as_they_are_decimal_and_fall_back_to_their_defaults) {
    constexpr std::pair<const WCHAR*, std::array<int32_t, 8>> kCases[] = {
        {TEXT("1,2,3"), {1, 2, 60, 90, 290, 330, 35, 3}},
        {TEXT("0,20000,50,x,5,6,7,8,9"), {40, 70, 50, 90, 5, 6, 7, 8}},
        {TEXT("79"), {40, 70, 60, 90, 290, 330, 35, 79}},
        {TEXT(",,,,,,,10000"), {40, 70, 60, 90, 290, 330, 35, 10000}},
        {TEXT("1,10001"), {1, 70, 60, 90, 290, 330, 35, 55}},
        {TEXT("-1, 2 ,+3,"), {40, 2, 3, 90, 290, 330, 35, 55}},
        {TEXT("4294967306, \t7,0x10,+-5,- 5,5x"), {40, 7, 60, 90, 290, 330, 35, 5}},
    };
    for (const auto& [text, values] : kCases)
        EXPECT_EQ(ParseMaintenanceValues(text), values);
}

// The product of this test is one that nobody has installed.
TEST(ConfigDiscovery, Files_that_name_the_module_are_candidates_in_their_order) {
    WCHAR folder[MAX_PATH] = {};
    DWORD needed = 0;
    ASSERT_TRUE(GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(folder),
                                           sizeof(folder), &needed));
    const WideText plain = folder + WideText(TEXT("\\3\\KESTRELTEST.INI"));
    const WideText xps = folder + WideText(TEXT("\\3\\KESTRELTESTXPS.INI"));
    const auto asFile = [](WideText path) {
        std::ranges::replace(path, TEXT('\\'), TEXT('/'));
        return Path(path);
    };
    const auto install = [&](const WideText& path, const char* module) {
        std::ofstream(asFile(path)) << "[SDK]\nLibrary=" << module << "\n[Status Monitor]\nExecutable=x\n";
    };
    const auto find = [](const WCHAR* ending) {
        return FindConfigFiles(WideText(TEXT("C:\\programs\\KESTRELTEST")) + ending);
    };
    using Found = std::vector<WideText>;

    install(plain, "OTHERSDK.DLL");
    for (const WCHAR* none : {TEXT("SDK.DLL"), TEXT("MON.DLL"), TEXT("MUI.EXE"), TEXT(".DLL")})
        EXPECT_EQ(find(none), Found());
    install(xps, "KESTRELTESTsdk.DLL");
    EXPECT_EQ(find(TEXT("SDK.dll")), Found{xps});
    install(plain, "KESTRELTESTSDK.dll");
    EXPECT_EQ(find(TEXT("sdk.dll")), (Found{plain, xps}));
    std::filesystem::remove(asFile(plain));
    std::filesystem::remove(asFile(xps));
}
