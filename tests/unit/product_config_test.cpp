#include "host/product_config.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <winspool.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/config_discovery.h"
#include "host/profile_reader.h"

namespace {

using Path = std::filesystem::path;

using Config = CProductConfig;
using Getter = const WideText& (Config::*)() const;

struct Line {
    const char* section;
    const char* text;
    bool required;
    Getter getter = nullptr;  // of what follows the '='
};

// A complete file, line by line; sections are kept together.
constexpr Line kCompleteFile[] = {
    {"Printers", "ZR One", true},
    {"Network Printers", "ZR Net=x", true},
    {"L-Path Printers", "ZR L", false},
    {"C-Path Printers", "ZR C", false},
    {"Display Icons", "ZR One= -12abc", false},
    {"Printer Maintenance", "ZR One=1,2,3", false},
    {"Status Monitor", "Executable=ZRMUI.EXE", true, &Config::GetStatusMonitorExecutable},
    {"Status Monitor", "DisplayRegDir=Software\\ZR\\Display", true, &Config::GetDisplayRegDir},
    {"Status Monitor", "ProductRoot=ZRIJ", true, &Config::GetProductRoot},
    {"Job Control", "Directory=ZR\\Jobs/Now", true, &Config::GetJobControlDirectory},
    {"Job Control", "Filename=jobs.dat", true, &Config::GetJobControlFilename},
    {"ModelName For URL", "ZR One=zr-one", false},
    {"ModelName For URL", "ZR Three=Unknown", false},
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

std::vector<Line> CompleteFile() {
    return {std::begin(kCompleteFile), std::end(kCompleteFile)};
}

void Write(const Path& path, const std::vector<Line>& lines) {
    std::ofstream file(path, std::ios::binary);
    std::string section;
    for (const Line& line : lines) {
        if (section != line.section) file << '[' << line.section << "]\r\n";
        section = line.section;
        file << line.text << "\r\n";
    }
}

std::string ProcessId() {
    return std::to_string(GetCurrentProcessId());
}

class ProductConfig : public testing::Test {
  protected:
    ~ProductConfig() override {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }

    bool Load(const std::vector<Line>& lines) {
        const DWORD error = GetLastError();
        Write(path_, lines);
        SetLastError(error);
        return config_.Load(path_.string<WCHAR>());
    }

    const Path path_ = std::filesystem::temp_directory_path() / ("product-config-" + ProcessId() + ".ini");
    CProductConfig config_;
};

using Maintenance = std::array<int32_t, 8>;

constexpr std::pair<const WCHAR*, Maintenance> kMaintenance[] = {
    {TEXT("1,2,3"), {1, 2, 60, 90, 290, 330, 35, 3}},
    {TEXT("0,20000,50,x,5,6,7,8,9"), {40, 70, 50, 90, 5, 6, 7, 8}},
    {TEXT("11,12,13,14,15,16,17,18"), {11, 12, 13, 14, 15, 16, 17, 18}},
    {TEXT("77"), {40, 70, 60, 90, 290, 330, 35, 77}},
    {TEXT(",,,,,,,10000"), {40, 70, 60, 90, 290, 330, 35, 10000}},
    {TEXT("1,10001"), {1, 70, 60, 90, 290, 330, 35, 55}},
    {TEXT("-1, 2 ,+3,"), {40, 2, 3, 90, 290, 330, 35, 55}},
};

struct Directory {
    const char* line;
    bool good;
    const WCHAR* root;
    const WCHAR* leaf;
};

constexpr Directory kDirectories[] = {
    {"Directory=ZR\\Jobs", true, TEXT("ZR"), TEXT("Jobs")},
    {"Directory=ZR/Jobs", true, TEXT("ZR"), TEXT("Jobs")},
    {"Directory=A/B\\C/D", true, TEXT("A/B"), TEXT("D")},
    {"Directory=ZR\\\\Jobs", true, TEXT("ZR"), TEXT("Jobs")},
    {"Directory=Jobs", false, TEXT(""), TEXT("")},
    {"Directory=\\Jobs", false, TEXT(""), TEXT("")},
    {"Directory=ZR\\", false, TEXT("ZR"), TEXT("")},
};

}  // namespace

TEST_F(ProductConfig, A_complete_file_gives_every_value) {
    ASSERT_TRUE(Load(CompleteFile()));
    for (const Line& line : kCompleteFile) {
        if (line.getter == nullptr) continue;
        const std::string_view text = line.text;
        const std::string_view value = text.substr(text.find('=') + 1);
        EXPECT_EQ((config_.*line.getter)(), WideText(value.begin(), value.end())) << text;
    }
    for (const auto& [getter, expected] : kDerived)
        EXPECT_EQ((config_.*getter)(), expected);
    EXPECT_EQ(config_.GetConfigFilePath(), path_.string<WCHAR>());
    EXPECT_EQ(config_.GetUIPLanguage(), 1031);
}

TEST_F(ProductConfig, Each_list_answers_for_its_own_section_letter_for_letter) {
    ASSERT_TRUE(Load(CompleteFile()));
    EXPECT_TRUE(config_.IsPrinterDriver(TEXT("ZR One")));
    EXPECT_FALSE(config_.IsPrinterDriver(TEXT("zr one")));
    EXPECT_FALSE(config_.IsPrinterDriver(TEXT("ZR Net=x")));
    EXPECT_FALSE(config_.IsPrinterDriver(TEXT("")));
    EXPECT_TRUE(config_.IsNetworkPrinterDriver(TEXT("ZR Net=x")));
    EXPECT_FALSE(config_.IsNetworkPrinterDriver(TEXT("ZR Net")));
    EXPECT_TRUE(config_.IsLPathPrinter(TEXT("ZR L")));
    EXPECT_TRUE(config_.IsCPathPrinter(TEXT("ZR C")));
    EXPECT_FALSE(config_.IsCPathPrinter(TEXT("ZR L")));
}

TEST_F(ProductConfig, A_driver_without_entries_of_its_own_gets_the_defaults) {
    ASSERT_TRUE(Load(CompleteFile()));
    EXPECT_EQ(config_.GetDisplayIcon(TEXT("ZR One")), -12);
    EXPECT_EQ(config_.GetDisplayIcon(TEXT("ZR Two")), 4000);

    MaintenanceSettings settings;
    EXPECT_TRUE(config_.GetMaintenanceSettings(TEXT("ZR One"), settings));
    EXPECT_EQ(settings.driver, TEXT("ZR One"));
    EXPECT_EQ(settings.values, kMaintenance[0].second);
    EXPECT_TRUE(config_.GetMaintenanceSettings(TEXT("ZR Two"), settings));
    EXPECT_EQ(settings.driver, TEXT("Unknown"));
    EXPECT_EQ(settings.values, (Maintenance{40, 70, 60, 90, 290, 330, 35, 55}));

    WideText model;
    EXPECT_TRUE(config_.GetModelNameForURL(TEXT("ZR One"), model));
    EXPECT_EQ(model, TEXT("zr-one"));
    for (const WCHAR* unknown : {TEXT("ZR Two"), TEXT("ZR Three")}) {
        EXPECT_FALSE(config_.GetModelNameForURL(unknown, model));
        EXPECT_EQ(model, TEXT("Unknown"));
    }
}

TEST_F(ProductConfig, Exactly_the_required_lines_are_required) {
    for (size_t missing = 0; missing < std::size(kCompleteFile); ++missing) {
        std::vector<Line> lines = CompleteFile();
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(missing));
        Write(path_, lines);
        CProductConfig config;
        EXPECT_EQ(config.Load(path_.string<WCHAR>()), !kCompleteFile[missing].required)
            << kCompleteFile[missing].text;
    }
}

TEST_F(ProductConfig, The_user_interface_language_defaults_to_that_of_the_user) {
    std::vector<Line> lines = CompleteFile();
    lines.pop_back();
    ASSERT_TRUE(Load(lines));
    EXPECT_EQ(config_.GetUIPLanguage(), 1024);
}

TEST_F(ProductConfig, The_first_load_is_the_only_one_also_when_it_fails) {
    EXPECT_FALSE(config_.IsLoaded());
    std::vector<Line> lines = CompleteFile();
    lines.resize(7);  // up to the first key of the status monitor
    SetLastError(4711);
    EXPECT_FALSE(Load(lines));
    EXPECT_EQ(GetLastError(), 4711u);
    EXPECT_TRUE(config_.IsLoaded());
    EXPECT_EQ(config_.GetStatusMonitorExecutable(), TEXT("ZRMUI.EXE"));

    EXPECT_TRUE(Load(CompleteFile()));
    EXPECT_TRUE(config_.LoadForModule(nullptr));
    EXPECT_EQ(config_.GetSignature(), TEXT(""));
}

TEST_F(ProductConfig, A_missing_file_fails_and_a_missing_module_leaves_the_object_empty) {
    CProductConfig untouched;
    SetLastError(4711);
    EXPECT_FALSE(untouched.LoadForModule(nullptr));
    EXPECT_FALSE(untouched.IsLoaded());
    EXPECT_FALSE(config_.Load(path_.string<WCHAR>()));
    EXPECT_EQ(GetLastError(), 4711u);
    EXPECT_TRUE(config_.IsLoaded());
}

TEST_F(ProductConfig, The_job_control_directory_needs_a_first_and_a_last_component) {
    for (const Directory& row : kDirectories) {
        std::vector<Line> lines = CompleteFile();
        for (Line& line : lines)
            if (std::string(line.section) == "Job Control" && std::string(line.text).starts_with("Directory"))
                line.text = row.line;
        Write(path_, lines);
        CProductConfig config;
        EXPECT_EQ(config.Load(path_.string<WCHAR>()), row.good) << row.line;
        EXPECT_EQ(config.GetJobControlRoot(), row.root) << row.line;
        EXPECT_EQ(config.GetJobControlLeaf(), row.leaf) << row.line;
        EXPECT_EQ(config.GetSignature(), TEXT("ZRIJ")) << row.line;
    }
}

TEST(ProductConfigValues, Maintenance_values_fall_back_to_their_defaults) {
    for (const auto& [text, values] : kMaintenance)
        EXPECT_EQ(ParseMaintenanceValues(text), values);
}

TEST(ProductConfigValues, Numbers_are_read_as_far_as_they_are_decimal) {
    constexpr std::pair<const WCHAR*, int32_t> kNumbers[] = {
        {TEXT(""), 0},
        {TEXT("12"), 12},
        {TEXT(" \t+7x"), 7},
        {TEXT("-5"), -5},
        {TEXT("2147483647"), 2147483647},
        {TEXT("99999999999999999999"), 2147483647},
    };
    for (const auto& [text, value] : kNumbers)
        EXPECT_EQ(ParseInteger(text), value);
    for (const WCHAR* none : {TEXT("- 5"), TEXT("0x10"), TEXT("+-5"), TEXT("x12")})
        EXPECT_EQ(ParseInteger(none), 0);
}

// The product of these tests is one that nobody has installed.
class ConfigDiscovery : public testing::Test {
  protected:
    void SetUp() override {
        WCHAR folder[MAX_PATH] = {};
        DWORD needed = 0;
        ASSERT_TRUE(GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(folder),
                                               sizeof(folder), &needed));
        folder_ = WideText(folder) + TEXT("\\3\\");
    }

    ~ConfigDiscovery() override {
        std::error_code ignored;
        for (const Path& file : files_)
            std::filesystem::remove(file, ignored);
    }

    [[nodiscard]] WideText PathOf(WideView ending) const { return folder_ + prefix_ + WideText(ending); }

    // The text of a configuration file that names `module` as the library.
    void Install(WideView ending, const std::string& module) {
        std::string name = Path(PathOf(ending)).string();
        std::replace(name.begin(), name.end(), '\\', '/');
        files_.emplace_back(name);
        std::ofstream(files_.back()) << "[SDK]\nLibrary=" << module << "\n[Status Monitor]\nExecutable=x\n";
    }

    [[nodiscard]] std::vector<WideText> Find(WideView moduleEnding) const {
        return FindConfigFiles(TEXT("C:\\programs\\") + prefix_ + WideText(moduleEnding));
    }

    const std::string name_ = "KESTRELTEST" + ProcessId();
    const WideText prefix_ = WideText(name_.begin(), name_.end());
    WideText folder_;
    std::vector<Path> files_;
};

TEST_F(ConfigDiscovery, Both_files_that_name_the_module_are_candidates_in_their_order) {
    EXPECT_TRUE(Find(TEXT("SDK.dll")).empty());
    Install(TEXT("XPS.INI"), name_ + "sdk.DLL");
    EXPECT_EQ(Find(TEXT("SDK.dll")), std::vector<WideText>{PathOf(TEXT("XPS.INI"))});
    Install(TEXT(".INI"), name_ + "SDK.dll");
    const std::vector<WideText> both = {PathOf(TEXT(".INI")), PathOf(TEXT("XPS.INI"))};
    EXPECT_EQ(Find(TEXT("sdk.dll")), both);
}

TEST_F(ConfigDiscovery, A_file_that_names_another_module_is_no_candidate) {
    Install(TEXT(".INI"), "OTHERSDK.DLL");
    EXPECT_TRUE(Find(TEXT("SDK.DLL")).empty());
    EXPECT_TRUE(Find(TEXT("MON.DLL")).empty());  // has no entry in the file
    EXPECT_TRUE(Find(TEXT("MUI.EXE")).empty());
    EXPECT_TRUE(Find(TEXT(".DLL")).empty());
}
