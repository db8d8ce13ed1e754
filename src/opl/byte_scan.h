// Finding bytes of a kind, a vector register at a time.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <experimental/simd>
#include <string_view>

namespace opl {

/// The bytes that end a value. ";" and "?" differ in one bit.
inline constexpr auto kDelimiter = [](auto byte) { return (byte | 4) == '?' || byte == '&'; };

using ByteBlock = std::experimental::native_simd<char>;

[[nodiscard]] inline ByteBlock LoadBlock(const char* data) {
    return {data, std::experimental::element_aligned};
}

/// Returns the offset of the first byte for which `matches` holds, or `length` when there is none. Nothing
/// beyond `length` is read. `matches` takes one char or a vector of them alike: a generic lambda of
/// comparisons joined by `||`.
template <typename Matches>
[[nodiscard]] inline size_t FindFirst(const char* data, size_t length, Matches matches) {
    constexpr size_t kBlock = ByteBlock::size();
    const auto findIn = [&](size_t offset) {
        const auto hits = matches(LoadBlock(data + offset));
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

/// The same where a hit is likely to be far away: four blocks are asked together.
template <typename Matches>
[[nodiscard]] inline size_t FindFarFirst(const char* data, size_t length, Matches matches) {
    constexpr size_t kBlock = ByteBlock::size();
    const auto hitsIn = [&](size_t offset) { return matches(LoadBlock(data + offset)); };
    size_t offset = 0;
    for (; offset + 4 * kBlock <= length; offset += 4 * kBlock) {
        if (any_of((hitsIn(offset) || hitsIn(offset + kBlock)) ||
                   (hitsIn(offset + 2 * kBlock) || hitsIn(offset + 3 * kBlock))))
            break;
    }
    return offset + FindFirst(data + offset, length - offset, matches);
}

/// The same from the end: the offset of the last such byte, or `length`.
template <typename Matches>
[[nodiscard]] inline size_t FindLast(const char* data, size_t length, Matches matches) {
    size_t end = length;
    for (; end >= ByteBlock::size(); end -= ByteBlock::size()) {
        const size_t start = end - ByteBlock::size();
        const auto hits = matches(LoadBlock(data + start));
        if (any_of(hits)) return start + static_cast<size_t>(find_last_set(hits));
    }
    while (end > 0 && !matches(data[end - 1]))
        --end;
    return end > 0 ? end - 1 : length;
}

inline constexpr size_t kWindow = 64;  // bytes, of which each has a bit

/// A bit for each such byte of the window at `data`, the lowest for the first.
template <typename Matches>
[[nodiscard]] inline uint64_t HitsInWindow(const char* data, Matches matches) {
    uint64_t hits = 0;
    for (size_t at = 0; at < kWindow; at += ByteBlock::size()) {
        const auto inBlock = matches(LoadBlock(data + at));
        hits |= uint64_t{inBlock.__to_bitset().to_ullong()} << at;  // nothing else gives all bits of a mask
    }
    return hits;
}

/// The same of a window of which there are only the first bytes.
template <typename Matches>
[[nodiscard]] inline uint64_t HitsInTail(std::string_view tail, Matches matches) {
    std::array<char, kWindow> window{};
    std::ranges::copy(tail, window.begin());
    return HitsInWindow(window.data(), matches) & ((uint64_t{1} << tail.size()) - 1);
}

/// Calls `visit` with the offset of each such byte of `text` in turn, and goes on at the offset that it
/// returns. What is loaded next does not wait for where a hit was.
template <typename Matches, typename Visit>
inline void ForEachHit(std::string_view text, Matches matches, Visit visit) {
    for (size_t window = 0, next = 0; window < text.size(); window = next) {
        const std::string_view rest = text.substr(window);
        next = window + kWindow;
        uint64_t hits =
            rest.size() >= kWindow ? HitsInWindow(rest.data(), matches) : HitsInTail(rest, matches);
        for (; hits != 0; hits &= hits - 1) {
            const size_t hit = window + static_cast<size_t>(std::countr_zero(hits));
            const size_t resume = visit(hit);
            if (resume != hit + 1) {
                next = resume;
                break;
            }
        }
    }
}

}  // namespace opl
