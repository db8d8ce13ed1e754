// The product configuration: the initialisation file that the driver installer puts beside the printer
// drivers.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "kwt/critical_section.h"
#include "kwt/wide_text.h"

namespace host {

/// Eight settings of the maintenance programs, each from 1 to 10000.
struct MaintenanceSettings {
    static constexpr size_t kValueCount = 8;

    WideText driver = TEXT("Unknown");
    std::array<int32_t, kValueCount> values = {40, 70, 60, 90, 290, 330, 35, 55};
};

struct DisplayIconEntry {
    WideText driver = TEXT("Unknown");
    int32_t icon = 0;
};

struct UrlModelEntry {
    WideText driver = TEXT("Unknown");
    WideText model = TEXT("Unknown");
};

/// The eight values of a "Printer Maintenance" line, separated by commas. A value that is missing or out of
/// range takes its default. In a shorter line the text after the last comma is the eighth value.
[[nodiscard]] std::array<int32_t, MaintenanceSettings::kValueCount> ParseMaintenanceValues(WideView text);

/// Read at most once in a process, by the first Load, and only read from then on; that Load decides, whatever
/// its outcome. Any thread may call any operation. Getters and lookups take no lock and are for the time
/// after a Load. Names are compared letter for letter.
///
/// It holds the whole file: other modules of the package read what this library does not.
///
/// The last-error value is left alone by all operations; no exception leaves Load or LoadForModule.
class CProductConfig final {
  public:
    static constexpr int32_t kDefaultIcon = 4000;
    static constexpr int32_t kUserDefaultLanguage = 1024;

    /// The one that all code but tests uses.
    [[nodiscard]] static CProductConfig& Instance();

    CProductConfig() = default;
    CProductConfig(const CProductConfig&) = delete;
    CProductConfig& operator=(const CProductConfig&) = delete;

    /// Finds the file of the module, which is in the printer driver directory, has the module's product
    /// prefix and names the module, and loads it. True at once when a Load has taken place.
    [[nodiscard]] bool LoadForModule(HMODULE module);
    /// False when the file cannot be read or lacks a required value; what was read before it is kept.
    [[nodiscard]] bool Load(const WideText& path);
    /// True after the first Load, also a failed one.
    [[nodiscard]] bool IsLoaded() const;

    [[nodiscard]] bool IsPrinterDriver(WideView name) const;
    [[nodiscard]] bool IsNetworkPrinterDriver(WideView name) const;
    [[nodiscard]] bool IsLPathPrinter(WideView name) const;
    [[nodiscard]] bool IsCPathPrinter(WideView name) const;

    /// The driver's icon number, else kDefaultIcon.
    [[nodiscard]] int32_t GetDisplayIcon(WideView driver) const;
    /// The driver's settings, else the defaults under the name "Unknown"; always true.
    bool GetMaintenanceSettings(WideView driver, MaintenanceSettings& settings) const;
    /// False, with "Unknown", when the driver has no model name.
    bool GetModelNameForURL(WideView driver, WideText& model) const;

    [[nodiscard]] const WideText& GetConfigFilePath() const { return configFilePath_; }
    [[nodiscard]] const WideText& GetStatusMonitorExecutable() const { return statusMonitorExecutable_; }
    /// Below the current user's hive.
    [[nodiscard]] const WideText& GetDisplayRegDir() const { return displayRegDir_; }
    [[nodiscard]] const WideText& GetProductRoot() const { return productRoot_; }
    /// Relative to the folder of common application data; likewise that of the diagnostics.
    [[nodiscard]] const WideText& GetJobControlDirectory() const { return jobControlDirectory_; }
    [[nodiscard]] const WideText& GetJobControlFilename() const { return jobControlFilename_; }
    /// First and last component of the job control directory.
    [[nodiscard]] const WideText& GetJobControlRoot() const { return jobControlRoot_; }
    [[nodiscard]] const WideText& GetJobControlLeaf() const { return jobControlLeaf_; }
    [[nodiscard]] const WideText& GetDiagnosticDirectory() const { return diagnosticDirectory_; }
    [[nodiscard]] const WideText& GetDiagnosticFilename() const { return diagnosticFilename_; }
    [[nodiscard]] const WideText& GetLoggingRegistry() const { return loggingRegistry_; }
    /// Below "SOFTWARE" of the local machine's hive, where "InstallDir" names the program's folder.
    [[nodiscard]] const WideText& GetFWUpdaterInstallRegDir() const { return fwUpdaterInstallRegDir_; }
    [[nodiscard]] const WideText& GetFWUpdaterExecutable() const { return fwUpdaterExecutable_; }
    [[nodiscard]] const WideText& GetHarborDeskInstallRegDir() const { return harborDeskInstallRegDir_; }
    [[nodiscard]] const WideText& GetHarborDeskExecutable() const { return harborDeskExecutable_; }
    [[nodiscard]] const WideText& GetHostIdRegKey() const { return hostIdRegKey_; }
    /// Below the users hive.
    [[nodiscard]] const WideText& GetHostIdRegDir() const { return hostIdRegDir_; }
    /// Four characters.
    [[nodiscard]] const WideText& GetSignature() const { return signature_; }
    [[nodiscard]] int32_t GetUIPLanguage() const { return uipLanguage_; }
    /// Formed from the product root.
    [[nodiscard]] const WideText& GetUIPLibraryName() const { return uipLibraryName_; }
    [[nodiscard]] const WideText& GetMUIName() const { return muiName_; }
    [[nodiscard]] const WideText& GetHelpFileName() const { return helpFileName_; }
    [[nodiscard]] const WideText& GetPREName() const { return preName_; }
    [[nodiscard]] const WideText& GetPREExecutable() const { return preExecutable_; }

  private:
    struct ListSection;
    struct TextKey;
    struct DerivedName;
    static const ListSection kListSections[];
    static const TextKey kProgramKeys[];
    static const TextKey kPlaceKeys[];
    static const DerivedName kDerivedNames[];

    [[nodiscard]] bool ReadFile();
    [[nodiscard]] bool ReadLists();
    void ReadDisplayIcons();
    void ReadMaintenance();
    [[nodiscard]] bool ReadTexts(std::span<const TextKey> keys);
    void ReadUrlModels();
    [[nodiscard]] bool DeriveNames();

    mutable kwt::CriticalSection lock_;
    bool loaded_ = false;
    WideText configFilePath_;
    WideText jobControlRoot_;
    WideText jobControlLeaf_;
    WideText statusMonitorExecutable_;
    WideText displayRegDir_;
    WideText productRoot_;
    WideText jobControlDirectory_;
    WideText jobControlFilename_;
    WideText diagnosticDirectory_;
    WideText diagnosticFilename_;
    WideText loggingRegistry_;
    WideText fwUpdaterInstallRegDir_;
    WideText fwUpdaterExecutable_;
    WideText harborDeskInstallRegDir_;
    WideText harborDeskExecutable_;
    WideText hostIdRegKey_;
    WideText hostIdRegDir_;
    WideText signature_;
    WideText uipLibraryName_;
    WideText muiName_;
    WideText helpFileName_;
    WideText preName_;
    WideText preExecutable_;
    int32_t uipLanguage_ = 0;
    std::vector<WideText> printers_;
    std::vector<WideText> networkPrinters_;
    std::vector<WideText> lPathPrinters_;
    std::vector<WideText> cPathPrinters_;
    std::vector<DisplayIconEntry> displayIcons_;
    std::vector<MaintenanceSettings> maintenance_;
    std::vector<UrlModelEntry> urlModels_;
};

}  // namespace host
