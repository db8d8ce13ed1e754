// Files that are read and written whole.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tools {

/// The bytes; nothing when it cannot be read, as when it is not there or is a folder.
[[nodiscard]] std::optional<std::string> ReadFile(const std::filesystem::path& path);

/// What a printer keeps is nobody else's business, unless it is written for others.
enum class Readers { Owner, All };

/// Writes the file beside the old one and puts it in its place. False when that fails; the old one is there
/// then.
[[nodiscard]] bool RewriteFile(const std::filesystem::path& path, std::string_view text,
                               Readers readers = Readers::Owner);

}  // namespace tools
