// The texts of sdk.hpp are UTF-8, those of the library UTF-16. UTF-8 because it is what files, terminals and
// std::string hold nearly everywhere, and because kestrel_char is another type on Windows than elsewhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "sdk_types.h"

namespace kestrel::detail {

/// What the library takes as a text.
using Wide = std::basic_string<kestrel_char>;

inline constexpr std::uint32_t replacement = 0xFFFD;

inline void append_utf8(std::string& text, std::uint32_t point) {
    const auto put = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (point < 0x80) return put(point);
    if (point < 0x800) {
        put(0xC0 | point >> 6);
    } else {
        if (point < 0x10000) {
            put(0xE0 | point >> 12);
        } else {
            put(0xF0 | point >> 18);
            put(0x80 | (point >> 12 & 0x3F));
        }
        put(0x80 | (point >> 6 & 0x3F));
    }
    put(0x80 | (point & 0x3F));
}

/// The text in a field of `capacity` units, up to its terminator if it has one. A half of a surrogate pair,
/// as is left where a text was cut, becomes U+FFFD.
[[nodiscard]] inline std::string to_utf8(const kestrel_char* field, std::size_t capacity) {
    std::string text;
    for (std::size_t i = 0; i < capacity && field[i] != 0; ++i) {
        std::uint32_t point = static_cast<std::uint16_t>(field[i]);
        if (point >= 0xD800 && point < 0xE000) {
            const std::uint32_t next = i + 1 < capacity ? static_cast<std::uint16_t>(field[i + 1]) : 0;
            const bool is_pair = point < 0xDC00 && next >= 0xDC00 && next < 0xE000;
            point = is_pair ? 0x10000 + ((point - 0xD800) << 10) + (next - 0xDC00) : replacement;
            i += is_pair ? 1 : 0;
        }
        append_utf8(text, point);
    }
    return text;
}

/// False for what is not UTF-8 and for a zero character, which would cut the text unseen.
[[nodiscard]] inline bool to_wide(std::string_view text, Wide& wide) {
    wide.clear();
    wide.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i++]);
        if (lead == 0 || (lead >= 0x80 && lead < 0xC2) || lead > 0xF4) return false;
        const int more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        std::uint32_t point = more == 0 ? lead : lead & (0x3Fu >> more);
        for (int left = more; left > 0; --left) {
            if (i == text.size() || (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) return false;
            point = point << 6 | (static_cast<unsigned char>(text[i++]) & 0x3F);
        }
        const bool is_overlong = (more == 2 && point < 0x800) || (more == 3 && point < 0x10000);
        const bool is_surrogate = point >= 0xD800 && point < 0xE000;
        if (is_overlong || is_surrogate || point > 0x10FFFF) return false;
        if (point >= 0x10000) {
            wide += static_cast<kestrel_char>(0xD800 + ((point - 0x10000) >> 10));
            wide += static_cast<kestrel_char>(0xDC00 + ((point - 0x10000) & 0x3FF));
        } else {
            wide += static_cast<kestrel_char>(point);
        }
    }
    return true;
}

}  // namespace kestrel::detail
