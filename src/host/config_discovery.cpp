// A candidate is named after the module, and its own text must name the module in turn.
#include "host/config_discovery.h"

#include "host/driver_folder.h"
#include "host/profile_reader.h"
#include "kwt/object_names.h"

namespace host {
namespace {

// The entry of a configuration file that names the module of each kind.
struct ModuleEntry {
    kwt::ModuleKind kind;
    const WCHAR* section;
    const WCHAR* key;
};
constexpr ModuleEntry kModuleEntries[] = {
    {kwt::ModuleKind::StatusMonitor, TEXT("Status Monitor"), TEXT("Executable")},
    {kwt::ModuleKind::LanguageMonitor, TEXT("Language Monitor"), TEXT("Library")},
    {kwt::ModuleKind::Sdk, TEXT("SDK"), TEXT("Library")},
};

constexpr const WCHAR* kFileEndings[] = {TEXT(".INI"), TEXT("XPS.INI")};

bool FileExists(const WideText& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool NamesModule(const WideText& path, const ModuleEntry& entry, const WideText& capitalFileName) {
    return kwt::InCapitals(ProfileReader(path).Text(entry.section, entry.key)) == capitalFileName;
}

}  // namespace

std::vector<WideText> FindConfigFiles(const WideText& modulePath) {
    std::vector<WideText> files;
    const WideText fileName = kwt::InCapitals(kwt::FileNamePart(modulePath));
    const kwt::ModuleKind kind = kwt::FindModuleKind(fileName);
    const WideText folder = kind != kwt::ModuleKind::None ? DriverFileFolder() : WideText();
    if (folder.empty()) return files;
    const WideText stem = fileName.substr(0, fileName.size() - kwt::kModuleSuffixLength);
    for (const ModuleEntry& entry : kModuleEntries) {
        if (entry.kind != kind) continue;
        for (const WCHAR* ending : kFileEndings) {
            const WideText path = folder + stem + ending;
            if (FileExists(path) && NamesModule(path, entry, fileName)) files.push_back(path);
        }
    }
    return files;
}

}  // namespace host
