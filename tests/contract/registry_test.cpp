#include <cstdint>

#include "support.h"

namespace {

// A key below the current user's hive that is gone after the test.
class Registry : public testing::Test {
  protected:
    Registry() {
        const std::string name = "KestrelContract" + std::to_string(GetCurrentProcessId());
        name_.assign(name.begin(), name.end());
        RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, name_.c_str(), &key_), ERROR_SUCCESS);
    }
    ~Registry() override {
        RegCloseKey(key_);
        RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
    }

    LSTATUS Set(HKEY key, const WCHAR* name, std::string_view bytes) {
        return RegSetValueExW(key, name, 0, REG_BINARY, reinterpret_cast<const BYTE*>(bytes.data()),
                              static_cast<DWORD>(bytes.size()));
    }
    std::string Get(HKEY key, const WCHAR* name) {
        std::string bytes(64, '\0');
        DWORD size = static_cast<DWORD>(bytes.size());
        const LSTATUS status =
            RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<LPBYTE>(bytes.data()), &size);
        if (status != ERROR_SUCCESS) return "error " + std::to_string(status);
        bytes.resize(size);
        return bytes;
    }

    // The new key, or the one that was there.
    static HKEY Create(HKEY parent, const WCHAR* path, REGSAM access, DWORD expected) {
        HKEY key = nullptr;
        DWORD disposition = 0;
        EXPECT_EQ(RegCreateKeyExW(parent, path, 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr, &key,
                                  &disposition),
                  ERROR_SUCCESS);
        EXPECT_EQ(disposition, expected);
        return key;
    }

    WideText name_;
    HKEY key_ = nullptr;
};

}  // namespace

TEST_F(Registry, A_value_is_read_as_it_was_written) {
    SetLastError(77);
    ASSERT_EQ(Set(key_, TEXT("HostID"), "12345678"), ERROR_SUCCESS);
    BYTE data[8] = {};
    DWORD type = 0;
    DWORD size = 0;
    const auto query = [&](const WCHAR* name, LPDWORD typeAsked, LPBYTE room, DWORD capacity) {
        size = capacity;
        return RegQueryValueExW(key_, name, nullptr, typeAsked, room, &size);
    };
    const WCHAR* const name = TEXT("HostID");
    EXPECT_EQ(query(TEXT("hostid"), &type, data, sizeof data), ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_BINARY));
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(std::string(data, data + 8), "12345678");

    EXPECT_EQ(query(name, &type, data, 4), ERROR_MORE_DATA);
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(query(name, nullptr, nullptr, 0), ERROR_SUCCESS);
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(query(TEXT("Other"), &type, data, 8), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(query(TEXT("Other"), nullptr, nullptr, 8), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(size, 0u);
    type = 0;
    EXPECT_EQ(RegQueryValueExW(key_, name, nullptr, &type, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_BINARY));
    EXPECT_EQ(RegQueryValueExW(key_, name, nullptr, &type, data, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(query(name, &size, data, sizeof data), ERROR_SUCCESS) << "one place for both";
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(GetLastError(), 77u) << "the results tell it";
}

TEST_F(Registry, A_text_counted_without_its_terminator_is_stored_with_it) {
    const struct {
        DWORD type;
        const WCHAR* text;
        DWORD size;
        DWORD stored;
    } rows[] = {{REG_SZ, TEXT("abc"), 6, 8},       {REG_EXPAND_SZ, TEXT("abc"), 6, 8},
                {REG_MULTI_SZ, TEXT("abc"), 6, 8}, {REG_BINARY, TEXT("abc"), 6, 6},
                {REG_SZ, TEXT("abc"), 8, 8},       {REG_SZ, TEXT("abcd"), 6, 6},
                {REG_SZ, TEXT("abc"), 5, 5},       {REG_SZ, TEXT("abc"), 0, 0},
                {REG_SZ, TEXT("a"), 2, 4},         {REG_SZ, TEXT("a\u0100"), 4, 6},
                {REG_BINARY, nullptr, 0, 0}};
    for (const auto& row : rows) {
        const auto* bytes = reinterpret_cast<const BYTE*>(row.text);
        EXPECT_EQ(RegSetValueExW(key_, TEXT("v"), 0, row.type, bytes, row.size), ERROR_SUCCESS);
        EXPECT_EQ(Get(key_, TEXT("v")).size(), row.stored) << row.type << ", " << row.size;
    }
}

TEST_F(Registry, Bytes_that_cannot_be_read_are_refused_with_998) {
    for (const uintptr_t address : {0, 16})
        for (const DWORD type : {REG_BINARY, REG_SZ})
            EXPECT_EQ(RegSetValueExW(key_, TEXT("v"), 0, type, reinterpret_cast<const BYTE*>(address), 8),
                      ERROR_NOACCESS);
}

TEST_F(Registry, A_hive_is_known_however_its_number_was_widened_and_a_key_by_more_than_its_low_bits) {
    const auto number = static_cast<DWORD>(reinterpret_cast<uintptr_t>(HKEY_CURRENT_USER));
    const auto key = reinterpret_cast<uintptr_t>(key_) | 1;
    HKEY opened = nullptr;
    for (const uintptr_t handle :
         {uintptr_t{number}, static_cast<uintptr_t>(static_cast<intptr_t>(static_cast<LONG>(number))), key}) {
        EXPECT_EQ(RegOpenKeyExW(reinterpret_cast<HKEY>(handle), TEXT(""), 0, KEY_READ, &opened),
                  ERROR_SUCCESS);
        EXPECT_EQ(RegCloseKey(opened), ERROR_SUCCESS);
    }
}

TEST_F(Registry, Key_names_are_found_without_case_through_nested_paths) {
    HKEY nested = Create(key_, TEXT("Outer\\Inner \u00C9\\Deep"), KEY_ALL_ACCESS, REG_CREATED_NEW_KEY);
    Set(nested, TEXT("v"), "deep");
    EXPECT_EQ(RegCloseKey(nested), ERROR_SUCCESS);
    ASSERT_EQ(RegOpenKeyW(key_, TEXT("OUTER\\inner \u00E9\\deep"), &nested), ERROR_SUCCESS);
    EXPECT_EQ(Get(nested, TEXT("v")), "deep");
    RegCloseKey(nested);
    RegCloseKey(Create(key_, TEXT("outer"), KEY_READ, REG_OPENED_EXISTING_KEY));
}

TEST_F(Registry, What_is_not_there_or_badly_named_is_refused) {
    SetLastError(77);
    HKEY other = key_;
    EXPECT_EQ(RegOpenKeyW(key_, TEXT("None"), &other), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(RegOpenKeyExW(key_, TEXT("None\\Deeper"), 0, KEY_READ, &other), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegCreateKeyExW(HKEY_USERS, TEXT("\\Leading"), 0, nullptr, REG_OPTION_NON_VOLATILE,
                              KEY_ALL_ACCESS, nullptr, &other, nullptr),
              ERROR_BAD_PATHNAME);
    EXPECT_EQ(RegDeleteTreeW(key_, TEXT("None")), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
    EXPECT_EQ(GetLastError(), 77u) << "the results tell it";
}

TEST_F(Registry, A_key_opened_for_reading_refuses_writes) {
    HKEY readOnly = nullptr;
    Set(key_, TEXT("v"), "x");
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, name_.c_str(), 0, KEY_READ, &readOnly), ERROR_SUCCESS);
    EXPECT_EQ(Set(readOnly, TEXT("v"), "y"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteValueW(readOnly, TEXT("v")), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteTreeW(readOnly, nullptr), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Get(readOnly, TEXT("v")), "x");
    RegCloseKey(readOnly);
}

TEST_F(Registry, An_empty_path_is_the_key_itself_and_closing_a_hive_changes_nothing) {
    HKEY same = nullptr;
    EXPECT_EQ(RegOpenKeyW(HKEY_CURRENT_USER, TEXT(""), &same), ERROR_SUCCESS);
    EXPECT_EQ(same, HKEY_CURRENT_USER);
    EXPECT_EQ(RegCloseKey(same), ERROR_SUCCESS);
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, TEXT(""), &same), ERROR_SUCCESS);
    EXPECT_EQ(Set(same, TEXT("KestrelContract"), "root"), ERROR_SUCCESS);
    RegCloseKey(same);
    EXPECT_EQ(Get(HKEY_CURRENT_USER, TEXT("KestrelContract")), "root");
    EXPECT_EQ(RegDeleteValueW(HKEY_CURRENT_USER, TEXT("KestrelContract")), ERROR_SUCCESS);
}

TEST_F(Registry, Subkeys_are_listed_by_name) {
    for (const WCHAR* name : {TEXT("beta"), TEXT("Alpha"), TEXT("GAMMA")})
        RegCloseKey(Create(key_, name, KEY_READ, REG_CREATED_NEW_KEY));
    std::vector<WideText> names;
    WCHAR buffer[32];
    DWORD length = 32;
    LSTATUS status;
    while ((status = RegEnumKeyExW(key_, static_cast<DWORD>(names.size()), buffer, &length, nullptr, nullptr,
                                   nullptr, nullptr)) == ERROR_SUCCESS) {
        EXPECT_EQ(WideText(buffer).size(), length);
        names.emplace_back(buffer);
        length = 32;
    }
    EXPECT_EQ(status, ERROR_NO_MORE_ITEMS);
    EXPECT_EQ(names, (std::vector<WideText>{TEXT("Alpha"), TEXT("beta"), TEXT("GAMMA")}));
    length = 5;
    EXPECT_EQ(RegEnumKeyExW(key_, 0, buffer, &length, nullptr, nullptr, nullptr, nullptr), ERROR_MORE_DATA);
}

TEST_F(Registry, A_deleted_tree_takes_its_subkeys_along_and_a_new_key_is_empty) {
    const std::string missing = "error " + std::to_string(ERROR_FILE_NOT_FOUND);
    HKEY other = nullptr;
    const HKEY old = Create(key_, TEXT("A\\B"), KEY_ALL_ACCESS, REG_CREATED_NEW_KEY);
    Set(old, TEXT("v"), "old");
    EXPECT_EQ(RegDeleteTreeW(key_, TEXT("a")), ERROR_SUCCESS);
    EXPECT_EQ(RegOpenKeyW(key_, TEXT("A"), &other), ERROR_FILE_NOT_FOUND);
    const HKEY fresh = Create(key_, TEXT("A\\B"), KEY_ALL_ACCESS, REG_CREATED_NEW_KEY);
    EXPECT_EQ(Get(fresh, TEXT("v")), missing);
    // The handle of before does not reach the key that took the name.
    EXPECT_EQ(Set(old, TEXT("v"), "late"), ERROR_KEY_DELETED);
    EXPECT_EQ(Get(old, TEXT("v")), "error " + std::to_string(ERROR_KEY_DELETED));
    EXPECT_EQ(RegOpenKeyW(old, TEXT("C"), &other), ERROR_KEY_DELETED);
    EXPECT_EQ(Get(fresh, TEXT("v")), missing);
    RegCloseKey(old);
    RegCloseKey(fresh);
    // Without a path it is what the key holds that goes.
    Set(key_, TEXT("v"), "x");
    EXPECT_EQ(RegDeleteTreeW(key_, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegOpenKeyW(key_, TEXT("A"), &other), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Get(key_, TEXT("v")), missing);
}

TEST_F(Registry, Threads_write_side_by_side) {
    std::vector<std::jthread> threads;
    std::atomic<int> failures{0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            const WCHAR name[] = {static_cast<WCHAR>('a' + i), 0};
            for (int n = 0; n < 25; ++n) {
                const std::string value = std::to_string(n);
                if (Set(key_, name, value) != ERROR_SUCCESS || Get(key_, name) != value) ++failures;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(failures, 0);
}
