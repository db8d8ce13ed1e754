// Files that are read whole.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tools {

/// The bytes; nothing when it cannot be read, as when it is not there or is a folder.
[[nodiscard]] std::optional<std::string> ReadFile(const std::filesystem::path& path);

}  // namespace tools
