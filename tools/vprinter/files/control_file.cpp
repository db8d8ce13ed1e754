// All of the file is judged before any of it is set.
#include "vprinter/files/control_file.h"

#include <fmt/core.h>

#include <optional>
#include <utility>
#include <vector>

#include "shared/file.h"
#include "shared/json.h"
#include "shared/user_error.h"
#include "vprinter/files/byte_text.h"

namespace vprinter {
namespace {

namespace fs = std::filesystem;

constexpr const char* kEveryPrinter = "*";
constexpr const char* kFaults = "faults";
constexpr const char* kRefusedEnding = ".refused";

struct Changes {
    std::vector<std::pair<Setting*, std::string>> settings;
    std::optional<std::vector<FaultRule>> faults;
};

std::string TextOf(const tools::Json& value) {
    if (value.IsFlag()) return value.Flag() ? "YES" : "NO";
    if (value.IsInteger()) return value.Dump();
    return FromUtf8(value.Text());
}

void CollectFaults(const tools::Json& rules, Changes& changes) {
    if (!changes.faults) changes.faults.emplace();
    for (FaultRule& rule : ReadFaults(rules, kFaults))
        changes.faults->push_back(std::move(rule));
}

void CollectSetting(const std::string& key, const tools::Json& value, DeviceModel& model, Changes& changes) {
    Setting* const setting = model.Find(key);
    if (setting == nullptr) throw tools::UserError(key + ": there is nothing of this name");
    if (setting->spec.live) throw tools::UserError(key + ": the printer makes this value itself");
    std::string text = TextOf(value);
    const std::string problem = model.Check(*setting, text);
    if (!problem.empty()) throw tools::UserError(fmt::format("{}: {}", key, problem));
    changes.settings.emplace_back(setting, std::move(text));
}

Changes ReadChanges(const std::string& text, const std::string& port, DeviceModel& model) {
    const tools::Json document = tools::Json::Parse(text);
    Changes changes;
    for (const std::string& name : {std::string(kEveryPrinter), port}) {
        const tools::Json* const values = document.Find(name);
        if (values == nullptr) continue;
        for (const auto& [key, value] : values->Members()) {
            if (key == kFaults)
                CollectFaults(value, changes);
            else
                CollectSetting(key, value, model, changes);
        }
    }
    return changes;
}

}  // namespace

std::string ControlFile::Apply(DeviceModel& model, FaultScript& faults, uint64_t nowMs) {
    if (path_.empty() || !IsWrittenAnew()) return {};
    Changes changes;
    try {
        changes = ReadChanges(text_, port_, model);
    } catch (const tools::JsonError& problem) {
        return Refuse(fmt::format(
            "{} is not taken ({}); expected text such as {{\"{}\": {{\"ink.black\": 5}}}}; correct and write "
            "it again",
            path_, problem.what(), port_));
    } catch (const tools::UserError& problem) {
        return Refuse(fmt::format("{} is not taken, printer {}, {}; correct and write it again", path_, port_,
                                  problem.what()));
    }
    for (const auto& [setting, text] : changes.settings)
        static_cast<void>(model.SetFromText(*setting, text));
    if (changes.faults)
        faults.Replace(FaultSource::Control, FaultsFor(port_, *std::move(changes.faults)), nowMs);
    TakeRefusalBack();
    return {};
}

std::string ControlFile::Refuse(std::string problem) {
    static_cast<void>(tools::RewriteFile(path_ + kRefusedEnding, problem + '\n', tools::Readers::All));
    hasRefused_ = true;
    return problem;
}

// Another printer's stays.
void ControlFile::TakeRefusalBack() {
    std::error_code ignored;
    if (std::exchange(hasRefused_, false)) fs::remove(path_ + kRefusedEnding, ignored);
}

// By its time and by its text: some systems count the time in whole seconds.
bool ControlFile::IsWrittenAnew() {
    std::error_code error;
    const fs::file_time_type writtenAt = fs::last_write_time(path_, error);
    if (error) return false;
    std::optional<std::string> text = tools::ReadFile(path_);
    if (!text || (writtenAt == writtenAt_ && *text == text_)) return false;
    writtenAt_ = writtenAt;
    text_ = *std::move(text);
    return true;
}

}  // namespace vprinter
