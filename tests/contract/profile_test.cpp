#include "support.h"

namespace {

constexpr DWORD kSectionCapacity = 2600;

class Profile : public testing::Test {
  protected:
    WideText Write(std::string_view bytes) const { return folder_.WriteFile("p.ini", bytes); }

    const TempFolder folder_;
};

// Each with a bar behind it.
WideText Lines(const WideText& path, const WCHAR* section) {
    std::vector<WCHAR> buffer(kSectionCapacity, WCHAR('#'));
    const DWORD count = GetPrivateProfileSectionW(section, buffer.data(), kSectionCapacity, path.c_str());
    EXPECT_EQ(buffer[count], WCHAR(0));
    WideText lines(buffer.data(), count);
    std::replace(lines.begin(), lines.end(), WCHAR(0), WCHAR('|'));
    return lines;
}

WideText Value(const WideText& path, const WCHAR* section, const WCHAR* key, DWORD capacity = 260) {
    std::vector<WCHAR> buffer(capacity, WCHAR('#'));
    const DWORD count =
        GetPrivateProfileStringW(section, key, TEXT(""), buffer.data(), capacity, path.c_str());
    EXPECT_EQ(buffer[count], WCHAR(0));
    return WideText(buffer.data(), count);
}

constexpr char kFile[] =
    "stray=1\r\n"
    "[Printers]\r\n"
    "Driver One\r\n"
    "\r\n"
    "  k2  =  v2  \r\n"
    "; a comment\r\n"
    "\t ; an indented one\r\n"
    "=x\r\n"
    "k3=\r\n"
    "k2=second\r\n"
    "[NoClose\r\n"
    "quoted = \" a \"\r\n"
    "single='s'\r\n"
    "open=\"half\r\n"
    "inner=a \"b\" c\r\n"
    "note=text;rest\r\n"
    "#hash=yes\r\n"
    "empty=\"\"\r\n"
    "bare\r\n"
    "[ Spaced ] text after\r\n"
    "s=1\r\n"
    "[Printers]\r\n"
    "never=seen\r\n"
    "[Nothing]\r\n";

}  // namespace

TEST_F(Profile, A_section_is_its_lines_without_blanks_and_comments) {
    const WideText path = Write(kFile);
    EXPECT_EQ(Lines(path, TEXT("printers")),
              TEXT("Driver One|k2=v2|=x|k3=|k2=second|[NoClose|quoted=\" a \"|single='s'|open=\"half|")
                  TEXT("inner=a \"b\" c|note=text;rest|#hash=yes|empty=\"\"|bare|"));
    EXPECT_EQ(Lines(path, TEXT("Spaced")), TEXT("s=1|"));
}

TEST_F(Profile, A_missing_or_empty_section_has_no_lines_and_is_no_error) {
    const WideText path = Write(kFile);
    const WideText empty = folder_.WriteFile("empty.ini", "");
    for (const auto& [file, section] :
         {std::pair{path, TEXT("Absent")}, {path, TEXT("Nothing")}, {empty, TEXT("Absent")}}) {
        SetLastError(0);
        EXPECT_TRUE(Lines(file, section).empty());
        EXPECT_EQ(GetLastError(), 0u);
    }
}

TEST_F(Profile, Values_lose_their_blanks_and_one_pair_of_quotes) {
    const WideText path = Write(kFile);
    const std::pair<const WCHAR*, const WCHAR*> rows[] = {
        {TEXT("k2"), TEXT("v2")},           {TEXT("K2"), TEXT("v2")},
        {TEXT(" k2 "), TEXT("v2")},         {TEXT("quoted"), TEXT(" a ")},
        {TEXT("single"), TEXT("s")},        {TEXT("open"), TEXT("\"half")},
        {TEXT("inner"), TEXT("a \"b\" c")}, {TEXT("note"), TEXT("text;rest")},
        {TEXT("#hash"), TEXT("yes")},       {TEXT("k3"), TEXT("")},
        {TEXT("empty"), TEXT("")},          {TEXT("bare"), TEXT("")},
        {TEXT("absent"), TEXT("")},         {TEXT("never"), TEXT("")},
        {TEXT("stray"), TEXT("")},
    };
    for (const auto& [key, value] : rows)
        EXPECT_EQ(Value(path, TEXT("PRINTERS"), key), value);
}

TEST_F(Profile, A_fallback_loses_its_trailing_blanks_and_a_list_needs_a_section_and_a_buffer) {
    const WideText path = Write(kFile);
    WCHAR buffer[8];
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("S"), TEXT("k"), TEXT("ab   "), buffer, 8, path.c_str()), 2u);
    EXPECT_REFUSED(ERROR_INVALID_PARAMETER, GetPrivateProfileSectionW(nullptr, buffer, 8, path.c_str()));
    EXPECT_REFUSED(ERROR_INVALID_PARAMETER, GetPrivateProfileSectionW(TEXT("S"), nullptr, 8, path.c_str()));
}

TEST_F(Profile, Every_line_ending_and_byte_order_mark_is_read) {
    const auto wide = [](const std::string& text, bool bigEndian) {
        std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
        for (const char c : text)
            bytes += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
        return bytes;
    };
    const std::string text = "[S]\nk=v\nl=\xE9";
    const std::string contents[] = {
        "[S]\r\nk=v\r\nl=\xE9\r\n", text, "[S]\rk=v\rl=\xE9", wide(text, false), wide(text, true),
    };
    for (const std::string& bytes : contents) {
        const WideText path = Write(bytes);
        EXPECT_EQ(Value(path, TEXT("S"), TEXT("k")), TEXT("v"));
        EXPECT_EQ(Value(path, TEXT("S"), TEXT("l")), TEXT("\u00E9"));
        EXPECT_EQ(Lines(path, TEXT("S")), TEXT("k=v|l=\u00E9|"));
    }
}

TEST_F(Profile, Keys_and_values_end_at_a_NUL_and_a_file_may_end_in_one) {
    using namespace std::string_view_literals;
    const std::pair<std::string_view, const WCHAR*> rows[] = {
        {"\0"sv, TEXT("k=1|")},         {"\0\0"sv, TEXT("k=1|")},
        {"\x1A"sv, TEXT("k=1|")},       {"l=2\0x\nm=3\n"sv, TEXT("k=1|l=2|m=3|")},
        {"\0l=2\n"sv, TEXT("k=1|=2|")},
    };
    for (const auto& [rest, lines] : rows)
        EXPECT_EQ(Lines(Write(std::string("[S]\nk=1\n").append(rest)), TEXT("S")), lines);
}

TEST_F(Profile, A_list_that_does_not_fit_is_cut_inside_a_line_and_doubly_terminated) {
    std::string contents = "[L]\r\n";
    for (int i = 0; i < 400; ++i)
        contents += "Printer " + std::to_string(1000 + i) + "\r\n";
    const WideText path = Write(contents);
    WCHAR buffer[kSectionCapacity];
    std::fill(std::begin(buffer), std::end(buffer), WCHAR('#'));
    SetLastError(0);
    EXPECT_EQ(GetPrivateProfileSectionW(TEXT("L"), buffer, kSectionCapacity, path.c_str()),
              kSectionCapacity - 2);
    EXPECT_EQ(GetLastError(), 0u);
    EXPECT_EQ(buffer[kSectionCapacity - 2], WCHAR(0));
    EXPECT_EQ(buffer[kSectionCapacity - 1], WCHAR(0));
    // Each line takes 13 units: 199 whole ones and 11 units of the next.
    EXPECT_EQ(WideText(buffer + 199 * 13), TEXT("Printer 119"));
    for (const DWORD capacity : {12u, 13u, 14u}) {
        const WideText line = folder_.WriteFile("line.ini", "[L]\r\nPrinter 1000\r\n");
        buffer[capacity] = '#';
        GetPrivateProfileSectionW(TEXT("L"), buffer, capacity, line.c_str());
        EXPECT_EQ(buffer[capacity], '#') << capacity;
    }
}

TEST_F(Profile, A_long_value_is_cut_to_the_buffer) {
    const WideText path = Write("[S]\nk=" + std::string(5000, 'x') + "\n");
    EXPECT_EQ(Value(path, TEXT("S"), TEXT("k"), 1).size(), 0u);
    EXPECT_EQ(Value(path, TEXT("S"), TEXT("k"), 260).size(), 259u);
    EXPECT_EQ(Value(path, TEXT("S"), TEXT("k"), 6000).size(), 5000u);
}

TEST_F(Profile, A_file_that_cannot_be_read_gives_nothing_and_the_reason) {
    const std::pair<WideText, DWORD> rows[] = {
        {folder_.Path("none.ini"), ERROR_FILE_NOT_FOUND},
        {folder_.Path("none/p.ini"), ERROR_PATH_NOT_FOUND},
        {folder_.MakeFolder("sub"), ERROR_ACCESS_DENIED},
    };
    for (const auto& [path, error] : rows) {
        SetLastError(0);
        EXPECT_TRUE(Lines(path, TEXT("S")).empty());
        EXPECT_EQ(GetLastError(), error);
        EXPECT_EQ(Value(path, TEXT("S"), TEXT("k")), WideText());
    }
}

TEST_F(Profile, Numbers_are_read_as_far_as_they_go) {
    const std::pair<const char*, UINT> rows[] = {
        {"12", 12},     {"-5", 0xFFFFFFFBu},    {"+7", 7},
        {"  9 ", 9},    {"12abc", 12},          {"abc", 0},
        {"", 1024},     {"0x10", 16},           {"0X1F", 0},
        {"010", 10},    {"-0x10", 0xFFFFFFF0u}, {"4294967295", 0xFFFFFFFFu},
        {"- 4", 0},     {"4294967296", 0},      {"\"33\"", 33},
        {"0xAf", 0xAF}, {"0xbC9G", 0xBC9},
    };
    for (const auto& [text, number] : rows) {
        const WideText path = Write(std::string("[S]\nk=") + text + "\n");
        EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), 1024, path.c_str()), number) << text;
        EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("other"), -3, path.c_str()), 0xFFFFFFFDu);
    }
}
