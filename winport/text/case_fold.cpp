#include "winport/text/case_fold.h"

#include <algorithm>

namespace winport {

namespace {

// Lower-case letters first..last, every step-th of them; adding `toUpper` gives the upper-case letter.
struct CaseRange {
    char16_t first;
    char16_t last;
    int step;
    int toUpper;
};

constexpr CaseRange kCaseRanges[] = {
    {0x0061, 0x007A, 1, -32},  // ASCII
    {0x00E0, 0x00F6, 1, -32},  // Latin-1, on both sides of the division sign
    {0x00F8, 0x00FE, 1, -32},  //
    {0x00FF, 0x00FF, 1, 121},  // y with diaeresis
    {0x0101, 0x012F, 2, -1},   // Latin Extended-A, without the dotless i
    {0x0133, 0x0137, 2, -1},   //
    {0x013A, 0x0148, 2, -1},   //
    {0x014B, 0x0177, 2, -1},   //
    {0x017A, 0x017E, 2, -1},   //
    {0x03AC, 0x03AC, 1, -38},  // Greek
    {0x03AD, 0x03AF, 1, -37},  //
    {0x03B1, 0x03C1, 1, -32},  //
    {0x03C3, 0x03CB, 1, -32},  //
    {0x03CC, 0x03CC, 1, -64},  //
    {0x03CD, 0x03CE, 1, -63},  //
    {0x0430, 0x044F, 1, -32},  // Cyrillic
    {0x0450, 0x045F, 1, -80},  //
    {0x0461, 0x0481, 2, -1},   //
    {0x048B, 0x04BF, 2, -1},   //
    {0x0561, 0x0586, 1, -48},  // Armenian
    {0x1E01, 0x1E95, 2, -1},   // Latin Extended Additional
    {0x1EA1, 0x1EFF, 2, -1},   //
    {0xFF41, 0xFF5A, 1, -32},  // full-width Latin
};

char16_t ToUpper(char16_t unit) {
    for (const CaseRange& range : kCaseRanges) {
        if (unit < range.first) break;
        if (unit > range.last) continue;
        const bool listed = (unit - range.first) % range.step == 0;
        return listed ? static_cast<char16_t>(unit + range.toUpper) : unit;
    }
    return unit;
}

}  // namespace

std::u16string FoldCase(std::u16string_view text) {
    std::u16string folded(text);
    std::transform(folded.begin(), folded.end(), folded.begin(), ToUpper);
    return folded;
}

bool EqualsWithoutCase(std::u16string_view left, std::u16string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char16_t a, char16_t b) { return ToUpper(a) == ToUpper(b); });
}

}  // namespace winport
