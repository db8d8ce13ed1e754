// All of the file is judged before any of it is set.
#include "vprinter/files/control_file.h"

#include <fmt/core.h>

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

using Changes = std::vector<std::pair<Setting*, std::string>>;

std::string TextOf(const tools::Json& value) {
    if (value.IsFlag()) return value.Flag() ? "YES" : "NO";
    if (value.IsInteger()) return value.Dump();
    return FromUtf8(value.Text());
}

void CollectChanges(const tools::Json& values, DeviceModel& model, Changes& changes) {
    for (const auto& [key, value] : values.Members()) {
        Setting* const setting = model.Find(key);
        if (setting == nullptr) throw tools::UserError(key + ": there is nothing of this name");
        if (setting->spec.live) throw tools::UserError(key + ": the printer makes this value itself");
        std::string text = TextOf(value);
        const std::string problem = model.Check(*setting, text);
        if (!problem.empty()) throw tools::UserError(fmt::format("{}: {}", key, problem));
        changes.emplace_back(setting, std::move(text));
    }
}

}  // namespace

std::string ControlFile::Apply(DeviceModel& model) {
    if (path_.empty() || !IsWrittenAnew()) return {};
    Changes changes;
    try {
        const tools::Json document = tools::Json::Parse(text_);
        for (const std::string& name : {std::string(kEveryPrinter), port_}) {
            if (const tools::Json* const values = document.Find(name))
                CollectChanges(*values, model, changes);
        }
    } catch (const tools::JsonError& problem) {
        return fmt::format(
            "{} is not taken ({}); expected text such as {{\"{}\": {{\"ink.black\": 5}}}}; correct and write "
            "it again",
            path_, problem.what(), port_);
    } catch (const tools::UserError& problem) {
        return fmt::format("{} is not taken, printer {}, {}; correct and write it again", path_, port_,
                           problem.what());
    }
    for (const auto& [setting, text] : changes)
        static_cast<void>(model.SetFromText(*setting, text));
    return {};
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
