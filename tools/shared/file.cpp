// A folder opens like a file and fails when it is read: as a stream that went bad.
#include "shared/file.h"

#include <array>
#include <fstream>

namespace tools {

std::optional<std::string> ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text;
    std::array<char, 4096> block;
    while (file.read(block.data(), block.size()), file.gcount() > 0)
        text.append(block.data(), static_cast<size_t>(file.gcount()));
    if (!file.is_open() || file.bad()) return {};
    return text;
}

bool RewriteFile(const std::filesystem::path& path, std::string_view text, Readers readers) {
    namespace fs = std::filesystem;
    const fs::perms others =
        readers == Readers::All ? fs::perms::group_read | fs::perms::others_read : fs::perms::none;
    fs::path temporary = path;
    temporary += ".new";
    std::error_code error;
    {
        std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
        fs::permissions(temporary, fs::perms::owner_read | fs::perms::owner_write | others, error);
        if (!file.write(text.data(), static_cast<std::streamsize>(text.size())).flush()) return false;
    }
    fs::rename(temporary, path, error);
    return !error;
}

}  // namespace tools
