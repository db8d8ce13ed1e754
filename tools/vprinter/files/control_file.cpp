#include "vprinter/files/control_file.h"

#include <fmt/format.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "shared/user_error.h"
#include "vprinter/files/byte_text.h"

namespace vprinter {
namespace {

using nlohmann::json;
namespace fs = std::filesystem;

constexpr const char* kEveryPrinter = "*";

using Changes = std::vector<std::pair<Setting*, std::string>>;

std::string TextOf(const json& value) {
    if (value.is_boolean()) return value.get<bool>() ? "YES" : "NO";
    if (value.is_number_integer()) return value.dump();
    return FromUtf8(value.get<std::string>());
}

void CollectChanges(const json& values, DeviceModel& model, Changes& changes) {
    for (const auto& [key, value] : values.items()) {
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
        const json document = json::parse(text_);
        for (const std::string& name : {std::string(kEveryPrinter), port_}) {
            if (document.contains(name)) CollectChanges(document.at(name), model, changes);
        }
    } catch (const json::exception& problem) {
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
    std::ifstream file(path_, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (writtenAt == writtenAt_ && text == text_) return false;
    writtenAt_ = writtenAt;
    text_ = std::move(text);
    return true;
}

}  // namespace vprinter
