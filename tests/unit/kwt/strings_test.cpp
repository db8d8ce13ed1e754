#include "kwt/strings.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace {

constexpr WCHAR kUntouched = TEXT('#');

}  // namespace

TEST(Strings, A_bounded_copy_is_cut_to_the_size_in_bytes_and_always_terminated) {
    constexpr std::pair<size_t, const WCHAR*> kCopies[] = {
        {2, TEXT("")}, {5, TEXT("P")}, {10, TEXT("Phot")}, {12, TEXT("Photo")}, {14, TEXT("Photo")}};
    for (const auto& [bytes, expected] : kCopies) {
        std::array<WCHAR, 8> wide;
        wide.fill(kUntouched);
        std::array<WCHAR, 8> converted = wide;
        kwt::CopyBoundedWide(wide.data(), TEXT("Photo"), bytes);
        EXPECT_EQ(WideText(wide.data()), expected) << bytes;
        EXPECT_EQ(wide[WideText(expected).size() + 1], kUntouched) << bytes;
        kwt::AsciiToWideBuffer(converted.data(), "Photo", bytes);
        EXPECT_EQ(converted, wide) << bytes;
    }
}

TEST(Strings, An_empty_text_converts_to_an_empty_text_and_no_text_to_nothing) {
    EXPECT_STREQ(kwt::AsciiString(TEXT("")).GetBuffer(), "");
    const kwt::WideString empty("");
    ASSERT_NE(empty.GetBuffer(), nullptr);
    EXPECT_EQ(empty.GetBuffer()[0], 0);

    EXPECT_EQ(kwt::WideString(nullptr).GetBuffer(), nullptr);
    EXPECT_EQ(kwt::AsciiString(nullptr).GetBuffer(), nullptr);
    EXPECT_EQ(kwt::AsciiString(nullptr).ToByteString(), "");
    WCHAR buffer[] = {kUntouched, kUntouched};
    kwt::AsciiToWideBuffer(buffer, nullptr, sizeof(buffer));
    EXPECT_EQ(buffer[0], 0);
}

TEST(Strings, A_text_goes_there_and_back_by_the_ansi_code_page_with_a_mark_for_what_that_lacks) {
    const WCHAR text[] = {TEXT('B'), 0x00FC, 0x20AC, 0x3042, 0};
    EXPECT_EQ(kwt::AsciiString(text).ToByteString(), "B\xFC\x80?");
    EXPECT_EQ(WideText(kwt::WideString("\xFC\x80").GetBuffer()), WideText(text + 1, 2));
}
