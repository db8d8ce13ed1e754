// One JSON document, written beside the old one and put in its place.
#include "vprinter/files/state_file.h"

#include <fmt/core.h>

#include <filesystem>

#include "shared/file.h"
#include "shared/json.h"
#include "shared/user_error.h"
#include "vprinter/files/byte_text.h"

namespace vprinter {
namespace {

namespace fs = std::filesystem;

constexpr int kVersion = 1;

}  // namespace

void StateFile::Load() {
    std::error_code error;
    if (!fs::exists(path_, error)) return;
    const std::optional<std::string> text = tools::ReadFile(path_);
    if (!text) throw tools::UserError(path_ + " cannot be read; check its permissions or name another file");
    try {
        const tools::Json document = tools::Json::Parse(*text);
        if (document.At("version") != kVersion) {
            throw tools::UserError(
                fmt::format("{} is of version {}, expected {}; delete it or name another file", path_,
                            document.At("version").Dump(), kVersion));
        }
        for (const auto& [port, values] : document.At("printers").Members()) {
            for (const auto& [key, value] : values.Members()) {
                printers_[port][key] = FromUtf8(value.Text());
            }
        }
    } catch (const tools::JsonError& problem) {
        throw tools::UserError(
            fmt::format("{} is not a state file of this program ({}); delete it or name another file", path_,
                        problem.what()));
    }
}

void StateFile::Restore(const std::string& port, DeviceModel& model) const {
    const auto values = printers_.find(port);
    if (values == printers_.end()) return;
    for (const auto& [key, value] : values->second) {
        Setting* const setting = model.Find(key);
        const std::string problem = setting ? model.SetFromText(*setting, value) : "there is no such setting";
        if (!problem.empty()) {
            throw tools::UserError(fmt::format("{}: printer {}, {}: {}; correct or delete this line", path_,
                                               port, key, problem));
        }
    }
}

bool StateFile::Save(const std::string& port, ValueMap values) {
    const std::lock_guard guard(lock_);
    printers_[port] = std::move(values);
    return Replace();
}

bool StateFile::Replace() const {
    tools::Json printers = tools::Json::EmptyObject();
    for (const auto& [port, values] : printers_) {
        tools::Json& printer = printers[port] = tools::Json::EmptyObject();
        for (const auto& [key, value] : values)
            printer[key] = ToUtf8(value);
    }
    const std::string text = tools::Json{{"version", kVersion}, {"printers", printers}}.Dump(2) + '\n';
    return !tools::RewriteFile(path_, text);
}

}  // namespace vprinter
