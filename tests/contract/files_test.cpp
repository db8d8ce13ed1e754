#include "support.h"

namespace {

HANDLE OpenForReading(const WideText& path, DWORD flags = FILE_ATTRIBUTE_NORMAL) {
    return CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, flags, nullptr);
}

}  // namespace

TEST(Files, Attributes_tell_files_from_folders_and_say_what_is_missing) {
    const TempFolder folder;
    const WideText file = folder.WriteFile("file.ini", "x");
    EXPECT_EQ(GetFileAttributesW(file.c_str()) & FILE_ATTRIBUTE_DIRECTORY, 0u);
    EXPECT_NE(GetFileAttributesW(folder.MakeFolder("sub").c_str()) & FILE_ATTRIBUTE_DIRECTORY, 0u);
    for (const bool writable : {false, true}) {
        constexpr auto kWrite = fs::perms::owner_write;
        using Options = fs::perm_options;
        fs::permissions(file, kWrite, writable ? Options::add : Options::remove);
        EXPECT_EQ((GetFileAttributesW(file.c_str()) & FILE_ATTRIBUTE_READONLY) == 0, writable);
    }

    const std::pair<WideText, LONG> missing[] = {
        {folder.Path("none.ini"), ERROR_FILE_NOT_FOUND},
        {folder.Path("none/file.ini"), ERROR_PATH_NOT_FOUND},
        {folder.Path("file.ini/below"), ERROR_PATH_NOT_FOUND},
        {folder.Path("wild*card"), ERROR_INVALID_NAME},
        {WideText(), ERROR_PATH_NOT_FOUND},
        {TEXT("/kestrel none"), ERROR_FILE_NOT_FOUND},
    };
    for (const auto& [path, error] : missing)
        EXPECT_REFUSED(error, GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES);
}

TEST(Files, Both_separators_lead_to_the_file) {
    const TempFolder folder;
    folder.MakeFolder("3");
    folder.WriteFile("3/A.INI", "x");
    for (const WCHAR* file : {TEXT("\\3\\A.INI"), TEXT("/3\\A.INI")})
        EXPECT_NE(GetFileAttributesW((folder.Path("") + file).c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST(Files, An_existing_file_opens_for_reading_and_its_handle_closes_once) {
    const TempFolder folder;
    const WideText path = folder.WriteFile(TEXT("driver \u00E9.inf"), "x");
    SetLastError(77);
    const HANDLE file = OpenForReading(path);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), 0u);
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_REFUSED(ERROR_INVALID_HANDLE, CloseHandle(file));
}

TEST(Files, What_cannot_be_opened_gives_the_invalid_handle_and_the_reason) {
    const TempFolder folder;
    const std::pair<WideText, LONG> rows[] = {
        {folder.Path("none.inf"), ERROR_FILE_NOT_FOUND},
        {folder.Path("none/a.inf"), ERROR_PATH_NOT_FOUND},
        {folder.MakeFolder("sub"), ERROR_ACCESS_DENIED},
    };
    for (const auto& [path, error] : rows)
        EXPECT_REFUSED(error, OpenForReading(path, 0) != INVALID_HANDLE_VALUE);
}
