#include <windows.h>
// The header below needs the one above.
#include <psapi.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "support.h"

TEST(Process, Ids_are_stable_and_threads_differ) {
    EXPECT_NE(GetCurrentProcessId(), 0u);
    EXPECT_EQ(GetCurrentProcessId(), GetCurrentProcessId());
    const DWORD here = GetCurrentThreadId();
    EXPECT_EQ(GetCurrentThreadId(), here);
    DWORD there = here;
    std::thread([&] { there = GetCurrentThreadId(); }).join();
    EXPECT_NE(there, here);
}

TEST(Modules, What_is_no_module_has_no_name_and_no_functions) {
    int local = 0;
    for (const auto module : {reinterpret_cast<HMODULE>(16), reinterpret_cast<HMODULE>(&local)}) {
        WCHAR name[260];
        EXPECT_EQ(ErrorOf([&] { return GetModuleFileNameW(module, name, 260); }), ERROR_MOD_NOT_FOUND);
        EXPECT_EQ(ErrorOf([&] { return GetProcAddress(module, "GetTickCount"); }), ERROR_MOD_NOT_FOUND);
        EXPECT_EQ(ErrorOf([&] { return FreeLibrary(module); }), ERROR_MOD_NOT_FOUND);
    }
    WCHAR name[2];
    for (const DWORD capacity : {0u, 2u}) {
        SetLastError(0);
        EXPECT_EQ(GetModuleFileNameW(nullptr, name, capacity), capacity);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    }
    EXPECT_NE(GetModuleHandleW(TEXT("ADVAPI32.DLL")), nullptr);
    const HMODULE system = GetModuleHandleW(TEXT("kernel32.dll"));
    for (int uses = 0; uses < 2; ++uses)
        EXPECT_TRUE(FreeLibrary(LoadLibraryW(TEXT("kernel32.dll"))));
    EXPECT_NE(GetProcAddress(system, "GetTickCount"), nullptr);
    EXPECT_EQ(ErrorOf([&] { return GetProcAddress(system, nullptr); }), ERROR_PROC_NOT_FOUND);
}

TEST(Process, The_list_holds_the_caller_once) {
    std::vector<DWORD> ids(16384);
    DWORD needed = 0;
    ASSERT_TRUE(EnumProcesses(ids.data(), static_cast<DWORD>(ids.size() * sizeof(DWORD)), &needed));
    ASSERT_LT(needed, ids.size() * sizeof(DWORD));
    ids.resize(needed / sizeof(DWORD));
    EXPECT_EQ(std::count(ids.begin(), ids.end(), GetCurrentProcessId()), 1);
}

TEST(Process, A_list_that_is_too_small_is_filled_and_says_so_by_its_size) {
    DWORD ids[2] = {0xFFFFFFFF, 0xFFFFFFFF};
    DWORD needed = 99;
    EXPECT_TRUE(EnumProcesses(ids, sizeof(DWORD) + 3, &needed));
    EXPECT_EQ(needed, sizeof(DWORD));
    EXPECT_NE(ids[0], 0xFFFFFFFFu);
    EXPECT_EQ(ids[1], 0xFFFFFFFFu);
}
