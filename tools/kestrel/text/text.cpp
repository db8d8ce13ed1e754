// The client's notations, and its complaints about a text.
#include "kestrel/text/text.h"

#include <fmt/core.h>

#include <algorithm>

#include "kestrel/failure.h"

namespace cli {
namespace {

constexpr bool IsPrintableAscii(unsigned char byte) {
    return byte >= 0x20 && byte <= 0x7E;
}

std::optional<unsigned> HexDigit(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    return {};
}

}  // namespace

WideText WideArgument(std::string_view text, std::string_view what) {
    std::optional<WideText> wide = WideFromUtf8(text);
    if (!wide) {
        throw UsageFailure(fmt::format("the {} is not UTF-8 text", what),
                           "use a terminal with a UTF-8 locale, such as LC_ALL=C.UTF-8");
    }
    return *std::move(wide);
}

std::optional<std::string> AnsiFromWide(const WideText& text) {
    if (text.empty()) return std::string();
    const int length = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string ansi(static_cast<size_t>(std::max(bytes, 0)), '\0');
    if (WideCharToMultiByte(CP_ACP, 0, text.data(), length, ansi.data(), bytes, nullptr, nullptr) <= 0)
        return {};

    // The way back tells a loss that the call itself does not report: a look-alike taken for the character.
    WideText again(text.size() + 1, 0);
    const int units = MultiByteToWideChar(CP_ACP, 0, ansi.data(), bytes, again.data(), length + 1);
    again.resize(static_cast<size_t>(std::max(units, 0)));
    return again == text ? std::optional(ansi) : std::nullopt;
}

// Of several stars only the last one is ever tried with more: whatever the others took can stay as it is.
bool GlobMatches(std::string_view pattern, std::string_view text) {
    std::size_t inPattern = 0;
    std::size_t star = pattern.npos;
    std::size_t afterStar = 0;
    for (std::size_t at = 0; at < text.size();) {
        const char wanted = inPattern < pattern.size() ? pattern[inPattern] : '\0';
        if (wanted == '*') {
            star = inPattern++;
            afterStar = at;
        } else if (inPattern < pattern.size() && (wanted == '?' || wanted == text[at])) {
            ++inPattern;
            ++at;
        } else if (star != pattern.npos) {
            inPattern = star + 1;
            at = ++afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', inPattern) == pattern.npos;
}

std::string_view WithoutByteOrderMark(std::string_view text) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    return text.starts_with(kMark) ? text.substr(kMark.size()) : text;
}

std::string ReadableBytes(std::string_view bytes) {
    std::string readable;
    for (const char byte : bytes) {
        if (byte == '\\') {
            readable += "\\\\";
        } else if (IsPrintableAscii(static_cast<unsigned char>(byte))) {
            readable += byte;
        } else {
            readable += fmt::format("\\x{:02X}", static_cast<unsigned char>(byte));
        }
    }
    return readable;
}

std::optional<std::string> BytesFromReadable(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        if (text.front() != '\\') {
            bytes += text.front();
            text.remove_prefix(1);
        } else if (text.starts_with("\\\\")) {
            bytes += '\\';
            text.remove_prefix(2);
        } else {
            const bool whole = text.starts_with("\\x") && text.size() >= 4;
            const std::optional<unsigned> high = whole ? HexDigit(text[2]) : std::nullopt;
            const std::optional<unsigned> low = whole ? HexDigit(text[3]) : std::nullopt;
            if (!high || !low) return {};
            bytes += static_cast<char>(*high << 4 | *low);
            text.remove_prefix(4);
        }
    }
    return bytes;
}

std::string HexDump(std::string_view bytes) {
    constexpr size_t kPerLine = 16;
    std::string dump;
    for (size_t offset = 0; offset < bytes.size(); offset += kPerLine) {
        std::string digits;
        std::string characters;
        for (const char byte : bytes.substr(offset, kPerLine)) {
            digits += fmt::format("{:02x} ", static_cast<unsigned char>(byte));
            characters += IsPrintableAscii(static_cast<unsigned char>(byte)) ? byte : '.';
        }
        dump += fmt::format("{:08x}  {:<{}} {}\n", offset, digits, kPerLine * 3, characters);
    }
    return dump;
}

}  // namespace cli
