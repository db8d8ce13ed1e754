// Files that are read and written whole.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace tools {

/// The bytes; nothing when it cannot be read, as when it is not there or is a folder.
[[nodiscard]] std::optional<std::string> ReadFile(const std::filesystem::path& path);

/// What a printer keeps is nobody else's business, unless it is written for others.
enum class Readers { Owner, All };

/// Writes the file beside the old one and puts it in its place, on the disk, before it returns. Any number of
/// writers may do so at the same time. After a failure, or when this process is killed or the power lost, the
/// old one is there; the next writer sweeps away what a killed one has left beside it. What is no plain file,
/// as a pipe or a terminal, is written to as it is.
[[nodiscard]] std::error_code RewriteFile(const std::filesystem::path& path, std::string_view text,
                                          Readers readers = Readers::Owner);

}  // namespace tools
