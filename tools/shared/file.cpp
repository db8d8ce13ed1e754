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

}  // namespace tools
