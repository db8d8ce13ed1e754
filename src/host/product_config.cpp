// The file is read by tables of sections and keys, in the order of their rows.
#include "host/product_config.h"

#include <algorithm>

#include "host/config_discovery.h"
#include "host/profile_reader.h"
#include "kwt/last_error_keeper.h"

namespace host {
namespace {

constexpr int32_t kLowestMaintenanceValue = 1;
constexpr int32_t kHighestMaintenanceValue = 10000;

bool Holds(const std::vector<WideText>& list, WideView name) {
    return std::find(list.begin(), list.end(), name) != list.end();
}

}  // namespace

struct CProductConfig::ListSection {
    const WCHAR* section;
    std::vector<WideText> CProductConfig::*list;
    bool required;  // at least one line
};

struct CProductConfig::TextKey {
    const WCHAR* section;
    const WCHAR* key;
    WideText CProductConfig::*value;
};

struct CProductConfig::DerivedName {
    WideText CProductConfig::*value;
    const WCHAR* ending;  // behind the product root
};

// The file in the order in which it is read. Every text is required, and the first that is missing ends the
// reading.
const CProductConfig::ListSection CProductConfig::kListSections[] = {
    {TEXT("Printers"), &CProductConfig::printers_, true},
    {TEXT("Network Printers"), &CProductConfig::networkPrinters_, true},
    {TEXT("L-Path Printers"), &CProductConfig::lPathPrinters_, false},
    {TEXT("C-Path Printers"), &CProductConfig::cPathPrinters_, false},
};

const CProductConfig::TextKey CProductConfig::kProgramKeys[] = {
    {TEXT("Status Monitor"), TEXT("Executable"), &CProductConfig::statusMonitorExecutable_},
    {TEXT("Status Monitor"), TEXT("DisplayRegDir"), &CProductConfig::displayRegDir_},
    {TEXT("Status Monitor"), TEXT("ProductRoot"), &CProductConfig::productRoot_},
    {TEXT("Job Control"), TEXT("Directory"), &CProductConfig::jobControlDirectory_},
    {TEXT("Job Control"), TEXT("Filename"), &CProductConfig::jobControlFilename_},
};

const CProductConfig::TextKey CProductConfig::kPlaceKeys[] = {
    {TEXT("Diagnostic"), TEXT("Directory"), &CProductConfig::diagnosticDirectory_},
    {TEXT("Diagnostic"), TEXT("Filename"), &CProductConfig::diagnosticFilename_},
    {TEXT("Logging"), TEXT("Registry"), &CProductConfig::loggingRegistry_},
    {TEXT("FW Updater"), TEXT("InstallRegDir"), &CProductConfig::fwUpdaterInstallRegDir_},
    {TEXT("FW Updater"), TEXT("Executable"), &CProductConfig::fwUpdaterExecutable_},
    {TEXT("Harbor Desk"), TEXT("InstallRegDir"), &CProductConfig::harborDeskInstallRegDir_},
    {TEXT("Harbor Desk"), TEXT("Executable"), &CProductConfig::harborDeskExecutable_},
    {TEXT("Host ID"), TEXT("RegKey"), &CProductConfig::hostIdRegKey_},
    {TEXT("Host ID"), TEXT("RegDir"), &CProductConfig::hostIdRegDir_},
    {TEXT("SDK"), TEXT("Signature"), &CProductConfig::signature_},
};

const CProductConfig::DerivedName CProductConfig::kDerivedNames[] = {
    {&CProductConfig::uipLibraryName_, TEXT("UIP.dll")}, {&CProductConfig::muiName_, TEXT("MUI")},
    {&CProductConfig::helpFileName_, TEXT(".chm")},      {&CProductConfig::preName_, TEXT("PRE")},
    {&CProductConfig::preExecutable_, TEXT("PRE.exe")},
};

std::array<int32_t, MaintenanceSettings::kValueCount> ParseMaintenanceValues(WideView text) {
    constexpr size_t kLast = MaintenanceSettings::kValueCount - 1;
    const MaintenanceSettings defaults;
    std::array<int32_t, MaintenanceSettings::kValueCount> values = {};  // 0 is out of range: no value
    for (size_t position = 0; position < values.size(); ++position) {
        const size_t comma = text.find(TEXT(','));
        if (comma == WideView::npos && position < kLast) continue;
        values[position] = ParseInteger(text.substr(0, comma));
        if (comma != WideView::npos) text.remove_prefix(comma + 1);
    }
    for (size_t position = 0; position < values.size(); ++position) {
        const int32_t value = values[position];
        if (value < kLowestMaintenanceValue || value > kHighestMaintenanceValue)
            values[position] = defaults.values[position];
    }
    return values;
}

CProductConfig& CProductConfig::Instance() {
    static CProductConfig config;
    return config;
}

bool CProductConfig::IsLoaded() const {
    const kwt::CriticalSection::Guard guard(lock_);
    return loaded_;
}

bool CProductConfig::LoadForModule(HMODULE module) {
    const kwt::LastErrorKeeper keeper;
    if (IsLoaded()) return true;
    if (module == nullptr) return false;
    try {
        WCHAR path[MAX_PATH] = {};
        const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
        const std::vector<WideText> files =
            FindConfigFiles(WideText(path, std::min<size_t>(length, MAX_PATH)));
        return std::any_of(files.begin(), files.end(), [this](const WideText& file) { return Load(file); });
    } catch (...) {
        return false;
    }
}

bool CProductConfig::Load(const WideText& path) {
    const kwt::LastErrorKeeper keeper;
    const kwt::CriticalSection::Guard guard(lock_);
    if (loaded_) return true;
    loaded_ = true;  // visible to others when the lock is left
    try {
        configFilePath_ = path;
        return ReadFile();
    } catch (...) {
        return false;
    }
}

bool CProductConfig::ReadFile() {
    if (!ReadLists()) return false;
    ReadDisplayIcons();
    ReadMaintenance();
    if (!ReadTexts(kProgramKeys)) return false;
    ReadUrlModels();
    if (!ReadTexts(kPlaceKeys)) return false;
    uipLanguage_ =
        ProfileReader(configFilePath_).Integer(TEXT("UIPSETTINGS"), TEXT("UIPLANG"), kUserDefaultLanguage);
    return DeriveNames();
}

bool CProductConfig::ReadLists() {
    const ProfileReader file(configFilePath_);
    for (const ListSection& row : kListSections) {
        this->*row.list = file.Lines(row.section);
        if (row.required && (this->*row.list).empty()) return false;
    }
    return true;
}

void CProductConfig::ReadDisplayIcons() {
    const ProfileReader file(configFilePath_);
    for (const WideText& driver : printers_) {
        const WideText value = file.Text(TEXT("Display Icons"), driver.c_str());
        if (!value.empty()) displayIcons_.push_back({driver, ParseInteger(value)});
    }
}

void CProductConfig::ReadMaintenance() {
    const ProfileReader file(configFilePath_);
    for (const WideText& driver : printers_) {
        const WideText value = file.Text(TEXT("Printer Maintenance"), driver.c_str());
        if (!value.empty()) maintenance_.push_back({driver, ParseMaintenanceValues(value)});
    }
}

void CProductConfig::ReadUrlModels() {
    const ProfileReader file(configFilePath_);
    for (const WideText& driver : printers_) {
        WideText value = file.Text(TEXT("ModelName For URL"), driver.c_str());
        if (!value.empty()) urlModels_.push_back({driver, std::move(value)});
    }
}

bool CProductConfig::ReadTexts(std::span<const TextKey> keys) {
    const ProfileReader file(configFilePath_);
    return std::all_of(keys.begin(), keys.end(), [&](const TextKey& row) {
        this->*row.value = file.Text(row.section, row.key);
        return !(this->*row.value).empty();
    });
}

bool CProductConfig::DeriveNames() {
    const WideView directory = jobControlDirectory_;
    size_t firstEnd = directory.find(TEXT('\\'));
    if (firstEnd == WideView::npos) firstEnd = directory.find(TEXT('/'));
    if (firstEnd == WideView::npos || firstEnd == 0) return false;
    jobControlRoot_ = directory.substr(0, firstEnd);
    jobControlLeaf_ = directory.substr(directory.find_last_of(TEXT("\\/")) + 1);
    if (jobControlLeaf_.empty()) return false;
    for (const DerivedName& row : kDerivedNames)
        this->*row.value = productRoot_ + row.ending;
    return true;
}

bool CProductConfig::IsPrinterDriver(WideView name) const {
    return Holds(printers_, name);
}

bool CProductConfig::IsNetworkPrinterDriver(WideView name) const {
    return Holds(networkPrinters_, name);
}

bool CProductConfig::IsLPathPrinter(WideView name) const {
    return Holds(lPathPrinters_, name);
}

bool CProductConfig::IsCPathPrinter(WideView name) const {
    return Holds(cPathPrinters_, name);
}

int32_t CProductConfig::GetDisplayIcon(WideView driver) const {
    for (const DisplayIconEntry& entry : displayIcons_)
        if (entry.driver == driver) return entry.icon;
    return kDefaultIcon;
}

bool CProductConfig::GetMaintenanceSettings(WideView driver, MaintenanceSettings& settings) const {
    const auto found = std::find_if(maintenance_.rbegin(), maintenance_.rend(),
                                    [&](const MaintenanceSettings& entry) { return entry.driver == driver; });
    settings = found != maintenance_.rend() ? *found : MaintenanceSettings();
    return true;
}

bool CProductConfig::GetModelNameForURL(WideView driver, WideText& model) const {
    const UrlModelEntry unknown;
    model = unknown.model;
    bool found = false;
    for (const UrlModelEntry& entry : urlModels_) {
        if (entry.driver != driver || entry.model == unknown.model) continue;
        model = entry.model;
        found = true;
    }
    return found;
}

}  // namespace host
