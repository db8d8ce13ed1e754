#include "vprinter/files/state_file.h"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>

#include "shared/user_error.h"
#include "vprinter/files/byte_text.h"

namespace vprinter {
namespace {

using nlohmann::json;
namespace fs = std::filesystem;

constexpr int kVersion = 1;

}  // namespace

void StateFile::Load() {
    std::error_code error;
    if (!fs::exists(path_, error)) return;
    std::ifstream file(path_, std::ios::binary);
    if (!file) throw tools::UserError(path_ + " cannot be read; check its permissions or name another file");
    try {
        const json document = json::parse(file);
        if (document.at("version") != kVersion) {
            throw tools::UserError(
                fmt::format("{} is of version {}, expected {}; delete it or name another file", path_,
                            document.at("version").dump(), kVersion));
        }
        for (const auto& [port, values] : document.at("printers").items()) {
            for (const auto& [key, value] : values.items()) {
                printers_[port][key] = FromUtf8(value.get<std::string>());
            }
        }
    } catch (const json::exception& problem) {
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
    json printers = json::object();
    for (const auto& [port, values] : printers_) {
        printers[port] = json::object();
        for (const auto& [key, value] : values)
            printers[port][key] = ToUtf8(value);
    }
    const std::string text = json{{"version", kVersion}, {"printers", printers}}.dump(
                                 2, ' ', false, json::error_handler_t::replace) +
                             '\n';

    const std::string temporary = path_ + ".new";
    std::error_code error;
    {
        std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
        // The settings hold the pass phrase of the network.
        fs::permissions(temporary, fs::perms::owner_read | fs::perms::owner_write, error);
        if (!file.write(text.data(), static_cast<std::streamsize>(text.size())).flush()) return false;
    }
    fs::rename(temporary, path_, error);
    return !error;
}

}  // namespace vprinter
