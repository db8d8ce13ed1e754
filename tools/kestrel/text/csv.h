#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

using CsvRow = std::vector<std::string>;

// Comma-separated values as in RFC 4180: a field with a comma, a quote or a line end is quoted, quotes inside
// are doubled. Lines may end in CR LF or LF alone, a byte order mark at the beginning is skipped, and lines
// without any character are left out. Throws a value failure that names the line of a quote out of place.
[[nodiscard]] std::vector<CsvRow> ParseCsv(std::string_view text);

// One line with its CR LF.
[[nodiscard]] std::string CsvLine(const CsvRow& row);

}  // namespace cli
