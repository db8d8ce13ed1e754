// Names and handles of kernel objects. What plain calls give, one after the other, is in the random traces.
#include <cstdint>
#include <cstring>

#include "handle_support.h"

namespace {

TEST(Objects, Names_are_case_sensitive_and_spaces_are_apart) {
    const WideText name = FreshName();
    const WideText local = name.substr(7) + TEXT("Case");
    const Handle held = AutoEvent(name + TEXT("Case"));
    for (const WideText& other : {name + TEXT("CASE"), local, TEXT("Local\\") + local}) {
        const Handle created = AutoEvent(other);
        EXPECT_TRUE(created);
        EXPECT_EQ(0u, GetLastError());
    }
}

TEST(Objects, Other_backslashes_and_prefix_letters_are_refused_with_3) {
    for (const WCHAR* name : {TEXT("Global\\a\\b"), TEXT("global\\x"), TEXT("GLOBAL\\x"), TEXT("Other\\x")}) {
        EXPECT_REFUSED(3, AutoEvent(name));
        EXPECT_REFUSED(3, Mutex(name));
        EXPECT_REFUSED(3, Section(100, name));
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
    for (const HANDLE handle : {HANDLE(nullptr), closed, reinterpret_cast<HANDLE>(0x12344)}) {
        EXPECT_REFUSED(6, CloseHandle(handle));
        EXPECT_REFUSED(6, SetEvent(handle));
        EXPECT_REFUSED(6, ResetEvent(handle));
        EXPECT_REFUSED(6, ReleaseMutex(handle));
        EXPECT_REFUSED(6, WaitForSingleObject(handle, 0) != WAIT_FAILED);
        EXPECT_REFUSED(6, MapViewOfFile(handle, FILE_MAP_READ, 0, 0, 0));
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

TEST(Sections, A_view_counts_in_whole_zeroed_pages_and_keeps_the_first_size) {
    const WideText name = FreshName();
    const Handle first = Section(65803, name);
    const Handle larger = Section(70000, name);
    EXPECT_EQ(183u, GetLastError());
    unsigned char* view = View(larger);
    EXPECT_EQ(183u, GetLastError());
    MEMORY_BASIC_INFORMATION info;
    ASSERT_EQ(sizeof(info), VirtualQuery(view, &info, sizeof(info)));
    EXPECT_EQ(69632u, info.RegionSize);
    EXPECT_EQ(0, view[0] | view[69631]);
    EXPECT_REFUSED(ERROR_BAD_LENGTH, VirtualQuery(view, &info, sizeof(info) - 1));
    EXPECT_REFUSED(487, UnmapViewOfFile(view + 69632));
    EXPECT_TRUE(UnmapViewOfFile(view + 69631));
}

TEST(Sections, A_read_only_handle_maps_for_reading_alone_what_others_write) {
    const WideText name = FreshName();
    const Handle writer = Section(100, name);
    const Handle reader(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READONLY, 0, 100, name.c_str()));
    EXPECT_EQ(183u, GetLastError());
    constexpr DWORD kExecute = 0x20;
    EXPECT_REFUSED(5, View(reader));
    EXPECT_REFUSED(5, View(reader, FILE_MAP_READ | kExecute));
    unsigned char* const written = View(writer);
    const unsigned char* const read = View(reader, FILE_MAP_READ);
    ASSERT_TRUE(written != nullptr && read != nullptr);
    written[99] = 7;
    EXPECT_EQ(7, read[99]);
    EXPECT_TRUE(UnmapViewOfFile(written));
    EXPECT_TRUE(UnmapViewOfFile(read));
}

TEST(Sections, A_view_keeps_the_memory_but_not_the_name) {
    const WideText name = FreshName();
    Handle first = Section(100, name);
    unsigned char* kept = View(first);
    kept[0] = 'x';
    first.Close();
    const Handle anew = Section(100, name);
    EXPECT_EQ(0u, GetLastError());
    unsigned char* view = View(anew);
    EXPECT_EQ(0, view[0]);
    EXPECT_EQ('x', kept[0]);
    UnmapViewOfFile(view);
    EXPECT_TRUE(UnmapViewOfFile(kept));
    EXPECT_REFUSED(487, UnmapViewOfFile(kept));
}

TEST(Objects, A_security_descriptor_begins_empty) {
    SECURITY_DESCRIPTOR descriptor;
    std::memset(&descriptor, 0xFF, sizeof descriptor);
    ASSERT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
    EXPECT_EQ(0, descriptor.Sbz1 | descriptor.Control);
}

TEST(Sections, An_empty_section_is_refused_with_87) {
    EXPECT_REFUSED(87, Section(0));
}

}  // namespace
