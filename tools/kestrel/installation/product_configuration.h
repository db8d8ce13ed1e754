// The file that tells the library which drivers are the product's: <driver directory>/3/<PRODUCT>.INI.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// Every section and key, with {product} (in capitals), {prefix} (the product as given), {signature} and
// {driver} to be filled in (product.ini).
extern const std::string_view kProductTemplate;

// The file's name is in capitals: the library looks for it so, and file names may be case-sensitive.
[[nodiscard]] std::filesystem::path ConfigurationPath(const std::string& product);

// The drivers that the file lists as the product's; none when there is no file.
[[nodiscard]] std::vector<std::string> ConfiguredDrivers(const std::string& product);

// The template filled in. Lines with {driver} are repeated for each of `drivers`.
// Throws a Failure for a product or driver name that such a file cannot hold.
[[nodiscard]] std::string ConfigurationText(const std::string& product,
                                            const std::vector<std::string>& drivers);

enum class Written { New, Unchanged, Replaced };

// Puts the text in place whole or not at all. An older, different file is kept as <file>.bak.
Written WriteConfiguration(const std::filesystem::path& path, const std::string& text);

}  // namespace cli
