// Finding the next byte of a kind, a vector register at a time.
#pragma once

#include <cstddef>
#include <experimental/simd>

namespace opl {

/// The bytes that end a value.
inline constexpr auto kDelimiter = [](auto byte) { return byte == '&' || byte == ';' || byte == '?'; };

/// Returns the offset of the first byte for which `matches` holds, or `length` when there is none. Nothing
/// beyond `length` is read. `matches` takes one char or a vector of them alike: a generic lambda of
/// comparisons joined by `||`.
template <typename Matches>
[[nodiscard]] inline size_t FindFirst(const char* data, size_t length, Matches matches) {
    using Block = std::experimental::native_simd<char>;
    constexpr size_t kBlock = Block::size();
    const auto findIn = [&](size_t offset) {
        const auto hits = matches(Block(data + offset, std::experimental::element_aligned));
        return any_of(hits) ? offset + static_cast<size_t>(find_first_set(hits)) : length;
    };

    if (length < kBlock) {
        size_t offset = 0;
        while (offset < length && !matches(data[offset]))
            ++offset;
        return offset;
    }
    for (size_t offset = 0; offset + kBlock <= length; offset += kBlock) {
        if (const size_t found = findIn(offset); found != length) return found;
    }
    return findIn(length - kBlock);  // the rest, together with bytes already known not to match
}

/// The same from the end: the offset of the last such byte, or `length`.
template <typename Matches>
[[nodiscard]] inline size_t FindLast(const char* data, size_t length, Matches matches) {
    using Block = std::experimental::native_simd<char>;
    size_t end = length;
    for (; end >= Block::size(); end -= Block::size()) {
        const size_t start = end - Block::size();
        const auto hits = matches(Block(data + start, std::experimental::element_aligned));
        if (any_of(hits)) return start + static_cast<size_t>(find_last_set(hits));
    }
    while (end > 0 && !matches(data[end - 1]))
        --end;
    return end > 0 ? end - 1 : length;
}

}  // namespace opl
