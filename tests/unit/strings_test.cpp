#include "kwt/strings.h"

#include <gtest/gtest.h>

#include <array>

namespace {

constexpr WCHAR kUntouched = TEXT('#');

struct BoundedCopy {
    size_t bytes;
    const WCHAR* expected;
};

// Of "Photo", with room in the destination for eight characters.
constexpr BoundedCopy kBoundedCopies[] = {
    {2, TEXT("")},      {4, TEXT("P")},      {5, TEXT("P")},
    {10, TEXT("Phot")}, {12, TEXT("Photo")}, {16, TEXT("Photo")},
};

std::array<WCHAR, 8> Untouched() {
    std::array<WCHAR, 8> buffer;
    buffer.fill(kUntouched);
    return buffer;
}

}  // namespace

TEST(Strings, A_bounded_copy_is_cut_to_the_size_in_bytes_and_always_terminated) {
    for (const BoundedCopy& copy : kBoundedCopies) {
        std::array<WCHAR, 8> wide = Untouched();
        kwt::CopyBoundedWide(wide.data(), TEXT("Photo"), copy.bytes);
        EXPECT_EQ(WideText(wide.data()), copy.expected) << copy.bytes;
        if (copy.bytes / 2 < wide.size()) {
            EXPECT_EQ(wide[copy.bytes / 2], kUntouched) << copy.bytes;
        }

        std::array<WCHAR, 8> converted = Untouched();
        kwt::AsciiToWideBuffer(converted.data(), "Photo", copy.bytes);
        EXPECT_EQ(converted, wide) << copy.bytes;
    }
}

TEST(Strings, A_printer_name_keeps_259_characters) {
    WCHAR name[260];
    kwt::CopyBoundedWide(name, WideText(300, TEXT('x')).c_str(), sizeof(name));
    EXPECT_EQ(WideText(name), WideText(259, TEXT('x')));
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

TEST(Strings, A_text_goes_there_and_back_by_the_ansi_code_page) {
    const WCHAR text[] = {TEXT('B'), 0x00FC, TEXT('r'), TEXT('o'), 0x20AC, 0};
    const kwt::AsciiString narrow(text);
    EXPECT_EQ(narrow.ToByteString(), "B\xFCro\x80");
    EXPECT_EQ(WideText(kwt::WideString(narrow.GetBuffer()).GetBuffer()), text);
    const WCHAR lacking[] = {TEXT('a'), 0x3042, TEXT('b'), 0};
    EXPECT_EQ(kwt::AsciiString(lacking).ToByteString(), "a?b");
}
