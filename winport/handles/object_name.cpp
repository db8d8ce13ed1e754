#include "winport/handles/object_name.h"

#include <array>
#include <cstdint>

#include "winport/handles/object_page.h"
#include "winport/text/utf.h"

namespace winport {

namespace {

// A file name has at most 255 bytes; longer names keep a readable beginning and end in a hash. The object's
// page holds the whole name, so a clash of hashes is seen.
constexpr size_t kReadableBytes = 180;

constexpr std::string_view kGlobalScope = "global.";
constexpr std::string_view kLocalScope = "local.";
constexpr std::u16string_view kGlobal = u"Global\\";
constexpr std::u16string_view kLocal = u"Local\\";

bool IsPlain(unsigned char byte) {
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           byte == '-' || byte == '_' || byte == '.';
}

std::string Escape(std::string_view name) {
    static constexpr std::string_view kHex = "0123456789abcdef";
    std::string escaped;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (IsPlain(byte)) {
            escaped += c;
        } else {
            escaped += '%';
            escaped += kHex[byte >> 4];
            escaped += kHex[byte & 15];
        }
    }
    return escaped;
}

// FNV-1a, 64 bits.
uint64_t Hash(std::string_view text) {
    uint64_t hash = 0xCBF29CE484222325;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return hash;
}

std::string FileNameOf(std::string_view scope, std::u16string_view name) {
    const std::string whole = Escape(ToUtf8(name));
    if (whole.size() <= kReadableBytes) return std::string(scope) + whole;
    return std::string(scope) + whole.substr(0, kReadableBytes) + '~' + std::to_string(Hash(whole));
}

}  // namespace

std::optional<std::string> ObjectFileName(LPCWSTR name) {
    std::u16string_view text = name;
    if (text.size() > kMaxNameUnits) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return std::nullopt;
    }
    std::string_view scope = kLocalScope;
    if (text.starts_with(kGlobal)) {
        scope = kGlobalScope;
        text.remove_prefix(kGlobal.size());
    } else {
        text = WithoutLocalPrefix(name);
    }
    if (text.empty() || text.find(u'\\') != std::u16string_view::npos) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return std::nullopt;
    }
    return FileNameOf(scope, text);
}

LPCWSTR WithoutLocalPrefix(LPCWSTR name) {
    return std::u16string_view(name).starts_with(kLocal) ? name + kLocal.size() : name;
}

bool IsObjectFileName(std::string_view fileName) {
    return fileName.starts_with(kGlobalScope) || fileName.starts_with(kLocalScope);
}

}  // namespace winport
