#include "support.h"

namespace {

// Whole texts in both directions, without the terminator.
WideText Widen(const std::string& bytes) {
    WideText wide(bytes.size(), 0);
    const int count = MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()),
                                          wide.data(), static_cast<int>(wide.size()));
    wide.resize(count);
    return wide;
}

std::string Narrow(const WideText& text) {
    std::string bytes(text.size() * 4, '\0');
    const int count = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                                          static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(count);
    return bytes;
}

}  // namespace

TEST(Text, Every_byte_of_code_page_1252_survives_the_way_to_UTF16_and_back) {
    EXPECT_EQ(GetACP(), 1252u);
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    const WideText wide = Widen(bytes);
    ASSERT_EQ(wide.size(), 255u);
    EXPECT_EQ(Narrow(wide), bytes);
    for (const unsigned open : {0x81, 0x8D, 0x8F, 0x90, 0x9D})
        EXPECT_EQ(static_cast<unsigned>(wide[open - 1]), open);
}

TEST(Text, Letters_outside_Latin1_have_their_place_in_the_page) {
    const std::pair<WideText, std::string> pairs[] = {
        {TEXT("\u20AC"), "\x80"}, {TEXT("\u2026"), "\x85"}, {TEXT("\u0178"), "\x9F"},
        {TEXT("\u2013"), "\x96"}, {TEXT("\u201C"), "\x93"}, {TEXT("\u00E9"), "\xE9"},
        {TEXT("\u00FF"), "\xFF"},
    };
    for (const auto& [wide, narrow] : pairs) {
        EXPECT_EQ(Widen(narrow), wide);
        EXPECT_EQ(Narrow(wide), narrow);
    }
}

TEST(Text, What_the_page_lacks_becomes_one_question_mark_per_unit) {
    EXPECT_EQ(Narrow(TEXT("a\u3042b")), "a?b");
    EXPECT_EQ(Narrow(TEXT("\U0001F600")), "??");
    EXPECT_EQ(Narrow(TEXT("\u2126")), "?");
    EXPECT_EQ(Narrow({static_cast<WCHAR>(0xD800), 'x'}), "?x");
}

TEST(Text, The_callers_default_character_and_its_use_are_honoured) {
    char buffer[4] = {};
    BOOL used = TRUE;
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("abc"), -1, buffer, 4, "#", &used), 4);
    EXPECT_FALSE(used);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("a\u3042c"), -1, buffer, 4, "#", &used), 4);
    EXPECT_STREQ(buffer, "a#c");
    EXPECT_TRUE(used);
    used = FALSE;
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("a\u3042c"), -1, nullptr, 0, nullptr, &used), 4);
    EXPECT_TRUE(used);
}

TEST(Text, A_length_of_minus_one_counts_the_terminator_and_an_explicit_one_does_not) {
    WCHAR wide[8] = {};
    char narrow[8] = {};
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, nullptr, 0), 4);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", 3, wide, 8), 3);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "", -1, wide, 8), 1);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("abc"), -1, nullptr, 0, nullptr, nullptr), 4);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("abc"), 2, narrow, 8, nullptr, nullptr), 2);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT(""), -1, narrow, 8, nullptr, nullptr), 1);
}

TEST(Text, Refused_arguments_leave_their_error) {
    const struct {
        const char* what;
        DWORD flags;
        bool text, buffer;
        int length, capacity;
        LONG error;
    } rows[] = {
        {"no text", 0, false, true, -1, 8, ERROR_INVALID_PARAMETER},
        {"length 0", 0, true, true, 0, 8, ERROR_INVALID_PARAMETER},
        {"no buffer but a capacity", 0, true, false, -1, 8, ERROR_INVALID_PARAMETER},
        {"negative capacity", 0, true, true, -1, -1, ERROR_INVALID_PARAMETER},
        {"unknown flag", 0x40000000, true, true, -1, 8, ERROR_INVALID_FLAGS},
        {"too small", 0, true, true, -1, 3, ERROR_INSUFFICIENT_BUFFER},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        WCHAR wide[8] = {};
        char narrow[8] = {};
        EXPECT_REFUSED(row.error, MultiByteToWideChar(CP_ACP, row.flags, row.text ? "abc" : nullptr,
                                                      row.length, row.buffer ? wide : nullptr, row.capacity));
        EXPECT_REFUSED(row.error,
                       WideCharToMultiByte(CP_ACP, row.flags, row.text ? TEXT("abc") : nullptr, row.length,
                                           row.buffer ? narrow : nullptr, row.capacity, nullptr, nullptr));
    }
}

// Each of the following groups runs in a process of its own that was started in that page.

TEST(Code_page_932, Characters_take_one_or_two_bytes) {
    ASSERT_EQ(GetACP(), 932u);
    EXPECT_EQ(Narrow(TEXT("a\u3042\uFF71")), "a\x82\xA0\xB1");
    EXPECT_EQ(Widen("a\x82\xA0\xB1"), TEXT("a\u3042\uFF71"));
    EXPECT_EQ(Narrow(TEXT("\u0E01x")), "?x");
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("\u3042"), -1, nullptr, 0, nullptr, nullptr), 3);
    char small[2] = {};
    EXPECT_REFUSED(ERROR_INSUFFICIENT_BUFFER,
                   WideCharToMultiByte(CP_ACP, 0, TEXT("\u3042"), -1, small, 2, nullptr, nullptr));
}

TEST(Code_page_1251, Cyrillic_letters_take_one_byte) {
    ASSERT_EQ(GetACP(), 1251u);
    EXPECT_EQ(Narrow(TEXT("\u0416\u044F")), "\xC6\xFF");
    EXPECT_EQ(Widen("\xC6\xFF"), TEXT("\u0416\u044F"));
    EXPECT_EQ(Narrow(TEXT("\U0001F600")), "??");
}
