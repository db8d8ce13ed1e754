// A folder opens like a file and fails when it is read, which only the stream that is read into reports
// quietly.
#include "shared/file.h"

#include <fstream>
#include <sstream>

namespace tools {

std::optional<std::string> ReadFile(const std::filesystem::path& path) {
    const std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file.is_open() || text.bad()) return {};
    return std::move(text).str();
}

}  // namespace tools
