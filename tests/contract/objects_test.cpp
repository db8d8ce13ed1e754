// Names and handles of kernel objects. What plain calls give, one after the other, is in the random traces.
#include <cstdint>
#include <cstring>
#include <vector>

#include "handle_support.h"

namespace {

TEST(Objects, Names_are_case_sensitive_and_spaces_are_apart) {
    const WideText name = FreshName(TEXT("Case"));
    const Handle held = AutoEvent(name);
    for (const WideText& other :
         {FreshName(TEXT("CASE")), name.substr(7), TEXT("Local\\") + name.substr(7)}) {
        const Handle created = AutoEvent(other);
        EXPECT_TRUE(created);
        EXPECT_EQ(0u, GetLastError());
    }
}

TEST(Objects, Other_backslashes_and_prefix_letters_are_refused_with_3) {
    for (const WCHAR* name : {TEXT("Global\\a\\b"), TEXT("global\\x"), TEXT("GLOBAL\\x"), TEXT("Other\\x")}) {
        EXPECT_EQ(3, ErrorOf([&] { return bool(AutoEvent(name)); }));
        EXPECT_EQ(3, ErrorOf([&] { return bool(Mutex(name)); }));
        EXPECT_EQ(3, ErrorOf([&] { return bool(Section(100, name)); }));
    }
}

TEST(Objects, Odd_characters_and_long_names_name_objects) {
    const WideText odd = FreshName(TEXT("/ %25 .. \u00E9\u3042 *?\"<>|"));
    const WideText longName = FreshName(WideText(180, TEXT('\u3042')));
    for (const WideText& name : {odd, longName}) {
        const Handle first = AutoEvent(name);
        ASSERT_TRUE(first);
        const Handle again = AutoEvent(name);
        EXPECT_EQ(183u, GetLastError());
        std::vector<Handle> others;
        for (const WCHAR* ending : {TEXT("x"), TEXT("\u00E8"), TEXT("\u00E9")}) {
            others.push_back(AutoEvent(name + ending));
            EXPECT_EQ(0u, GetLastError());
        }
    }
}

TEST(Objects, A_closed_or_unknown_handle_is_refused_with_6) {
    HANDLE closed = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    ASSERT_TRUE(CloseHandle(closed));
    const auto refused = [](auto call, auto failure) {
        SetLastError(77);
        EXPECT_EQ(failure, call());
        EXPECT_EQ(6u, GetLastError());
    };
    for (HANDLE handle : {static_cast<HANDLE>(nullptr), closed, reinterpret_cast<HANDLE>(0x12344)}) {
        refused([&] { return CloseHandle(handle); }, FALSE);
        refused([&] { return SetEvent(handle); }, FALSE);
        refused([&] { return ResetEvent(handle); }, FALSE);
        refused([&] { return ReleaseMutex(handle); }, FALSE);
        refused([&] { return WaitForSingleObject(handle, 0); }, WAIT_FAILED);
        refused([&] { return MapViewOfFile(handle, FILE_MAP_READ, 0, 0, 0); }, static_cast<LPVOID>(nullptr));
    }
}

TEST(Objects, The_two_low_bits_of_a_handle_are_the_callers_own) {
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const auto marked = [event](uintptr_t bits) {
        return reinterpret_cast<HANDLE>(reinterpret_cast<uintptr_t>(event) | bits);
    };
    EXPECT_TRUE(SetEvent(marked(1)));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(marked(2), 0));
    EXPECT_TRUE(CloseHandle(marked(3)));
    EXPECT_FALSE(CloseHandle(event));
}

TEST(Sections, Data_begins_zeroed_and_is_shared_by_all_views) {
    const WideText name = FreshName();
    const Handle first = Section(65803, name);
    const Handle second = Section(65803, name);
    auto* one = static_cast<unsigned char*>(MapViewOfFile(first.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 0));
    auto* two = static_cast<unsigned char*>(MapViewOfFile(second.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 0));
    const auto* reader =
        static_cast<const unsigned char*>(MapViewOfFile(second.Get(), FILE_MAP_READ, 0, 0, 0));
    ASSERT_TRUE(one != nullptr && two != nullptr && reader != nullptr);
    EXPECT_EQ(0, one[0]);
    EXPECT_EQ(0, one[65802]);
    one[0] = 1;
    two[65802] = 2;
    EXPECT_EQ(1, reader[0]);
    EXPECT_EQ(2, reader[65802]);
    for (const void* view :
         {static_cast<const void*>(one), static_cast<const void*>(two), static_cast<const void*>(reader)})
        EXPECT_TRUE(UnmapViewOfFile(view));
}

TEST(Sections, A_view_counts_in_whole_pages_and_keeps_the_first_size) {
    const WideText name = FreshName();
    const Handle first = Section(65803, name);
    const Handle larger = Section(70000, name);
    EXPECT_EQ(183u, GetLastError());
    void* view = MapViewOfFile(larger.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 0);
    EXPECT_EQ(183u, GetLastError());
    MEMORY_BASIC_INFORMATION info;
    ASSERT_EQ(sizeof(info), VirtualQuery(view, &info, sizeof(info)));
    EXPECT_EQ(69632u, info.RegionSize);
    EXPECT_EQ(ERROR_BAD_LENGTH, ErrorOf([&] { return VirtualQuery(view, &info, sizeof(info) - 1); }));
    auto* bytes = static_cast<char*>(view);
    EXPECT_FALSE(UnmapViewOfFile(bytes + 69632));
    EXPECT_EQ(487u, GetLastError());
    EXPECT_TRUE(UnmapViewOfFile(bytes + 69631));
}

TEST(Sections, A_read_only_handle_maps_for_reading_alone) {
    const WideText name = FreshName();
    const Handle writer = Section(100, name);
    const Handle reader(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READONLY, 0, 100, name.c_str()));
    EXPECT_EQ(183u, GetLastError());
    constexpr DWORD kExecute = 0x20;
    for (const DWORD access : {DWORD{FILE_MAP_ALL_ACCESS}, DWORD{FILE_MAP_READ} | kExecute}) {
        EXPECT_EQ(nullptr, MapViewOfFile(reader.Get(), access, 0, 0, 0));
        EXPECT_EQ(5u, GetLastError());
    }
    void* view = MapViewOfFile(reader.Get(), FILE_MAP_READ, 0, 0, 0);
    EXPECT_NE(nullptr, view);
    UnmapViewOfFile(view);
}

TEST(Sections, A_view_keeps_the_memory_but_not_the_name) {
    const WideText name = FreshName();
    Handle first = Section(100, name);
    auto* kept = static_cast<char*>(MapViewOfFile(first.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 0));
    kept[0] = 'x';
    first.Close();
    const Handle anew = Section(100, name);
    EXPECT_EQ(0u, GetLastError());
    auto* view = static_cast<char*>(MapViewOfFile(anew.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 0));
    EXPECT_EQ(0, view[0]);
    EXPECT_EQ('x', kept[0]);
    UnmapViewOfFile(view);
    EXPECT_TRUE(UnmapViewOfFile(kept));
    EXPECT_FALSE(UnmapViewOfFile(kept));
    EXPECT_EQ(487u, GetLastError());
}

TEST(Objects, A_security_descriptor_begins_empty) {
    SECURITY_DESCRIPTOR descriptor;
    std::memset(&descriptor, 0xFF, sizeof descriptor);
    ASSERT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
    EXPECT_EQ(0, descriptor.Sbz1 | descriptor.Control);
}

TEST(Sections, An_empty_section_is_refused_with_87) {
    EXPECT_EQ(nullptr, CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 0, nullptr));
    EXPECT_EQ(87u, GetLastError());
}

}  // namespace
