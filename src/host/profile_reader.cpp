// The system's readers, with the sizes that their callers are promised.
#include "host/profile_reader.h"

#include <algorithm>
#include <limits>

namespace host {
namespace {

constexpr DWORD kSectionCapacity = 2600;
constexpr DWORD kValueCapacity = MAX_PATH;

bool IsWhiteSpace(WCHAR character) {
    return character == TEXT(' ') || (character >= TEXT('\t') && character <= TEXT('\r'));
}

}  // namespace

std::vector<WideText> ProfileReader::Lines(const WCHAR* section) const {
    WCHAR buffer[kSectionCapacity];
    const DWORD length = GetPrivateProfileSectionW(section, buffer, kSectionCapacity, path_.c_str());
    std::vector<WideText> lines;
    // Zero-terminated lines one behind the other. One that was cut ends with the buffer.
    WideView rest(buffer, length);
    while (!rest.empty()) {
        const WideView line = rest.substr(0, rest.find(WCHAR{0}));
        if (!line.empty()) lines.emplace_back(line);
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    return lines;
}

WideText ProfileReader::Text(const WCHAR* section, const WCHAR* key) const {
    WCHAR buffer[kValueCapacity];
    const DWORD length =
        GetPrivateProfileStringW(section, key, TEXT(""), buffer, kValueCapacity, path_.c_str());
    return WideText(buffer, length);
}

int32_t ProfileReader::Integer(const WCHAR* section, const WCHAR* key, int32_t fallback) const {
    return static_cast<int32_t>(GetPrivateProfileIntW(section, key, fallback, path_.c_str()));
}

int32_t ParseInteger(WideView text) {
    const auto first = std::find_if_not(text.begin(), text.end(), IsWhiteSpace);
    text.remove_prefix(static_cast<size_t>(first - text.begin()));
    const bool negative = text.starts_with(TEXT('-'));
    if (negative || text.starts_with(TEXT('+'))) text.remove_prefix(1);
    constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
    int64_t value = 0;
    for (const WCHAR digit : text) {
        if (digit < TEXT('0') || digit > TEXT('9')) break;
        value = std::min(value * 10 + (digit - TEXT('0')), kMost);
    }
    return static_cast<int32_t>(negative ? -value : value);
}

}  // namespace host
