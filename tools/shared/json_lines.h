// Where things stand in a JSON text, for complaints about them.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace tools {

/// The line, from 1 on, of the byte at this offset.
[[nodiscard]] size_t LineOfByte(std::string_view text, size_t offset);

/// The lines on which the objects of a list begin: of the member of this name of the outermost object, or of
/// the list that the text is when `member` is empty. The text is valid JSON.
[[nodiscard]] std::vector<size_t> LinesOfItems(std::string_view text, std::string_view member = {});

}  // namespace tools
