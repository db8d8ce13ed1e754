#include "disk_model.h"

#include <algorithm>
#include <fstream>

namespace crash {
namespace {

// `size` of the bytes, the rest is lost.
void Change(std::string& content, const Step& step, size_t size) {
    if (step.kind == Step::Kind::Truncate) return content.resize(static_cast<size_t>(step.at));
    const size_t at = step.at < 0 ? content.size() : static_cast<size_t>(step.at);
    content.resize(std::max(content.size(), at + size));
    content.replace(at, size, step.bytes, 0, size);
}

}  // namespace

void DiskModel::Do(const Step& step) {
    switch (step.kind) {
        case Step::Kind::Acknowledge:
            return;
        case Step::Kind::Remove:
            names_.erase(step.path);
            return;
        case Step::Kind::Rename:
            if (const auto node = names_.extract(step.path)) names_[step.other] = node.mapped();
            return;
        case Step::Kind::Sync:
            if (const auto found = names_.find(step.path); found != names_.end()) {
                for (const Step& change : found->second->unsynced)
                    Change(found->second->synced, change, change.bytes.size());
                found->second->unsynced.clear();
            }
            syncedNames_ = names_;
            return;
        default:
            break;
    }
    auto& file = names_[step.path];
    if (!file) file = std::make_shared<File>();
    file->unsynced.push_back(step);
}

void DiskModel::WriteImage(const std::filesystem::path& folder, Unsynced names, Unsynced bytes,
                           std::mt19937& random) const {
    for (const auto& [name, file] : names == Unsynced::Kept ? names_ : syncedNames_) {
        std::string content = file->synced;
        for (const Step& change : file->unsynced) {
            const auto choice = bytes == Unsynced::Any ? random() % 3 : bytes == Unsynced::Kept ? 2 : 0;
            if (choice > 0) Change(content, change, change.bytes.size() * choice / 2);
        }
        const auto path = folder / name;
        std::filesystem::create_directories(path.parent_path());
        std::filesystem::permissions(path.parent_path(), std::filesystem::perms::owner_all);
        std::ofstream(path, std::ios::binary) << content;
        std::filesystem::permissions(
            path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    }
}

}  // namespace crash
