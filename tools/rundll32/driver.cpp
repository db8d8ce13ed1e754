#include "rundll32/driver.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "rundll32/refusal.h"

namespace printui {

namespace {

// This machine's models stand in sections with this ending.
#if defined(__x86_64__)
constexpr WCHAR kMachine[] = TEXT(".ntamd64");
#elif defined(__aarch64__)
constexpr WCHAR kMachine[] = TEXT(".ntarm64");
#else
constexpr WCHAR kMachine[] = TEXT(".ntx86");
#endif

constexpr std::size_t kMostModelsNamed = 8;

struct Model {
    WideText name;
    WideText installSection;
};

// The sections that list models, this machine's first. A driver built for this system may come with a file
// written for other machines, so theirs count too.
std::vector<WideText> ModelSections(const InfFile& file) {
    std::vector<WideText> sections;
    if (const auto* makers = file.Find(TEXT("Manufacturer"))) {
        for (const InfLine& maker : *makers) {
            const WideText& base = maker.values.front();
            for (auto decoration = maker.values.begin() + 1; decoration != maker.values.end(); ++decoration)
                sections.push_back(base + TEXT(".") + *decoration);
            sections.push_back(base);
        }
    }
    std::stable_partition(sections.begin(), sections.end(),
                          [](const WideText& name) { return Lower(name).find(kMachine) != WideText::npos; });
    return sections;
}

std::vector<Model> Models(const InfFile& file) {
    std::vector<Model> models;
    for (const WideText& section : ModelSections(file)) {
        const auto* lines = file.Find(section);
        if (lines == nullptr) continue;
        for (const InfLine& line : *lines)
            if (!line.key.empty()) models.push_back({line.key, line.values.front()});
    }
    return models;
}

[[noreturn]] void RefuseModel(const std::string& path, const WideText& model,
                              const std::vector<Model>& models) {
    std::vector<std::string> names;
    for (const Model& known : models) {
        const std::string name = fmt::format("\"{}\"", Utf8FromWide(known.name));
        if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    }
    const bool cut = names.size() > kMostModelsNamed;
    if (cut) names.resize(kMostModelsNamed);
    throw Refusal{fmt::format("\"{}\" has no model \"{}\".", path, Utf8FromWide(model)),
                  names.empty() ? std::string("It names no models at all: give another file with /f.")
                                : fmt::format("Give one of its models with /m: {}{}.", fmt::join(names, ", "),
                                              cut ? ", ..." : "")};
}

}  // namespace

Driver FindDriver(const InfFile& file, const std::string& path, const WideText& model) {
    const std::vector<Model> models = Models(file);
    const auto found = std::find_if(models.begin(), models.end(),
                                    [&](const Model& known) { return IsSameName(known.name, model); });
    if (found == models.end()) RefuseModel(path, model, models);

    // The files are named in the model's own section or in one that it shares with others. Without a name the
    // driver file is called as the section, and the data and the user interface are in the driver file.
    const WideText& section = found->installSection;
    const WideText shared = file.Value(section, TEXT("DataSection"));
    const auto value = [&](WideView key, const WideText& fallback) {
        WideText text = file.Value(section, key);
        if (text.empty()) text = file.Value(shared, key);
        return text.empty() ? fallback : text;
    };
    Driver driver;
    driver.model = found->name;
    driver.driverFile = value(TEXT("DriverFile"), section);
    driver.dataFile = value(TEXT("DataFile"), section);
    driver.configFile = value(TEXT("ConfigFile"), driver.driverFile);
    driver.helpFile = value(TEXT("HelpFile"), {});
    // "name,file"
    const WideText monitor = value(TEXT("LanguageMonitor"), {});
    driver.monitor = monitor.substr(0, monitor.find(','));
    driver.datatype = value(TEXT("DefaultDataType"), {});
    return driver;
}

}  // namespace printui
