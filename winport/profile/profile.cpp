// The initialisation-file readers. Each call reads the file anew, so a change by any process is seen at once.
#include <windows.h>

#include <cerrno>
#include <optional>
#include <string>
#include <string_view>

#include "winport/files/error_map.h"
#include "winport/files/host_file.h"
#include "winport/profile/profile_text.h"
#include "winport/text/case_fold.h"

namespace winport {

namespace {

// Far above any real file; what is larger was named by mistake.
constexpr std::size_t kMaxFileBytes = 4'194'304;

// A bare file name means the Windows folder, which is not there on Linux.
bool HasFolder(std::u16string_view path) {
    return path.find_first_of(u"\\/") != std::u16string_view::npos;
}

std::optional<std::u16string> NoText(DWORD error) {
    SetLastError(error);
    return std::nullopt;
}

// The whole text; nothing with the last-error value set when it cannot be read. Success sets 0, as an open
// does.
std::optional<std::u16string> ReadProfile(LPCWSTR path) {
    if (path == nullptr || !HasFolder(path)) return NoText(ERROR_FILE_NOT_FOUND);
    DWORD error = ERROR_SUCCESS;
    const Descriptor file = OpenForReading(path, error);
    if (!file) return NoText(error);
    const auto bytes = ReadUpTo(file, kMaxFileBytes + 1);
    if (!bytes) return NoText(ErrorFromErrno(errno));
    if (bytes->size() > kMaxFileBytes) return NoText(ERROR_NOT_ENOUGH_MEMORY);
    SetLastError(ERROR_SUCCESS);
    return DecodeProfile(*bytes);
}

// One pair of quotation marks around the whole value does not belong to it.
std::u16string_view WithoutQuotes(std::u16string_view value) {
    const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                        (value.front() == u'"' || value.front() == u'\'');
    return quoted ? value.substr(1, value.size() - 2) : value;
}

// The first value of that key; empty when the file, the section, the key or its value is missing.
std::u16string FindValue(LPCWSTR path, std::u16string_view section, std::u16string_view key) {
    const auto text = ReadProfile(path);
    if (!text) return {};
    auto lines = FindSection(*text, section);
    if (!lines) return {};
    const std::u16string_view wanted = TrimBlanks(key);
    while (const auto entry = NextEntry(*lines)) {
        if (entry->hasEquals && EqualsWithoutCase(entry->key, wanted)) {
            return std::u16string(WithoutQuotes(entry->value));
        }
    }
    return {};
}

// Copies as much as fits before a terminator.
DWORD CopyText(std::u16string_view text, LPWSTR buffer, DWORD capacity) {
    if (capacity == 0) return 0;
    const std::size_t count = text.copy(buffer, capacity - 1);
    buffer[count] = u'\0';
    return static_cast<DWORD>(count);
}

// Reads a number as far as it goes; a sign may stand before it and "0x" (not "0X") makes it hexadecimal.
// The value wraps around at 32 bits.
UINT ParseNumber(std::u16string_view text) {
    bool negative = false;
    if (!text.empty() && (text.front() == u'-' || text.front() == u'+')) {
        negative = text.front() == u'-';
        text.remove_prefix(1);
    }
    UINT base = 10;
    if (text.starts_with(u"0x")) {
        base = 16;
        text.remove_prefix(2);
    }
    constexpr std::u16string_view kDigits = u"0123456789abcdefABCDEF";
    UINT number = 0;
    for (const char16_t character : text) {
        std::size_t digit = kDigits.find(character);
        if (digit != std::u16string_view::npos && digit >= 16) digit -= 6;
        if (digit >= base) break;
        number = number * base + static_cast<UINT>(digit);
    }
    return negative ? 0u - number : number;
}

}  // namespace

}  // namespace winport

using namespace winport;

DWORD GetPrivateProfileSectionW(LPCWSTR section, LPWSTR buffer, DWORD capacity, LPCWSTR path) {
    if (section == nullptr || buffer == nullptr || capacity < 2) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::u16string list;
    const auto text = ReadProfile(path);
    auto lines = text ? FindSection(*text, section) : std::nullopt;
    while (lines) {
        const auto entry = NextEntry(*lines);
        if (!entry) break;
        list += entry->key;
        if (entry->hasEquals) (list += u'=') += entry->value;
        list += u'\0';
    }
    // A list that is cut ends in the middle of a line, with both terminators; the caller sees capacity - 2.
    if (list.size() >= capacity) list.resize(capacity - 2);
    const DWORD kept = static_cast<DWORD>(list.copy(buffer, list.size()));
    buffer[kept] = u'\0';
    if (kept + 1 < capacity) buffer[kept + 1] = u'\0';
    return kept;
}

DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR fallback, LPWSTR buffer, DWORD capacity,
                               LPCWSTR path) {
    if (section == nullptr || key == nullptr || buffer == nullptr) {
        if (buffer != nullptr) CopyText({}, buffer, capacity);
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const std::u16string value = FindValue(path, section, key);
    if (!value.empty() || fallback == nullptr) return CopyText(value, buffer, capacity);
    std::u16string_view text = fallback;
    while (!text.empty() && text.back() == u' ')
        text.remove_suffix(1);
    return CopyText(text, buffer, capacity);
}

UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT fallback, LPCWSTR path) {
    if (section == nullptr || key == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return static_cast<UINT>(fallback);
    }
    const std::u16string value = FindValue(path, section, key);
    return value.empty() ? static_cast<UINT>(fallback) : ParseNumber(value);
}
