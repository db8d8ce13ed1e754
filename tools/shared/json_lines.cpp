// One pass over the text, which counts lines and depth.
#include "shared/json_lines.h"

#include <algorithm>

namespace tools {
namespace {

/// Behind the quote that ends the text that begins behind `at`.
size_t EndOfText(std::string_view text, size_t at) {
    while (at < text.size() && text[at] != '"')
        at += text[at] == '\\' ? 2 : 1;
    return std::min(at, text.size());
}

}  // namespace

size_t LineOfByte(std::string_view text, size_t offset) {
    return 1 + static_cast<size_t>(std::ranges::count(text.substr(0, offset), '\n'));
}

std::vector<size_t> LinesOfItems(std::string_view text, std::string_view member) {
    const int depthOfList = member.empty() ? 0 : 1;
    std::vector<size_t> lines;
    std::string_view name;  // the last text of the outermost object
    bool isInList = false;
    int depth = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '"') {
            const size_t end = EndOfText(text, at + 1);
            if (depth == depthOfList) name = text.substr(at + 1, end - at - 1);
            at = end;
        } else if (c == '{' || c == '[') {
            if (depth == depthOfList) isInList = c == '[' && name == member;
            if (depth == depthOfList + 1 && isInList) lines.push_back(LineOfByte(text, at));
            ++depth;
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return lines;
}

}  // namespace tools
