#include <windows.h>
// The header below needs the one above.
#include <psapi.h>

#include "support.h"

TEST(Modules, What_is_no_module_has_no_name_and_no_functions) {
    int local = 0;
    for (const auto module : {reinterpret_cast<HMODULE>(16), reinterpret_cast<HMODULE>(&local)}) {
        WCHAR name[260];
        EXPECT_REFUSED(ERROR_MOD_NOT_FOUND, GetModuleFileNameW(module, name, 260));
        EXPECT_REFUSED(ERROR_MOD_NOT_FOUND, GetProcAddress(module, "GetTickCount"));
        EXPECT_REFUSED(ERROR_MOD_NOT_FOUND, FreeLibrary(module));
    }
    WCHAR name[2];
    for (const DWORD capacity : {0u, 2u})
        EXPECT_REFUSED(ERROR_INSUFFICIENT_BUFFER, GetModuleFileNameW(nullptr, name, capacity) != capacity);
    EXPECT_NE(GetModuleHandleW(TEXT("ADVAPI32.DLL")), nullptr);
    const HMODULE system = GetModuleHandleW(TEXT("kernel32.dll"));
    for (int uses = 0; uses < 2; ++uses)
        EXPECT_TRUE(FreeLibrary(LoadLibraryW(TEXT("kernel32.dll"))));
    EXPECT_NE(GetProcAddress(system, "GetTickCount"), nullptr);
    EXPECT_REFUSED(ERROR_PROC_NOT_FOUND, GetProcAddress(system, nullptr));
}

TEST(Process, A_list_that_is_too_small_is_filled_and_says_so_by_its_size) {
    DWORD ids[2] = {0xFFFFFFFF, 0xFFFFFFFF};
    DWORD needed = 99;
    EXPECT_TRUE(EnumProcesses(ids, sizeof(DWORD) + 3, &needed));
    EXPECT_EQ(needed, sizeof(DWORD));
    EXPECT_NE(ids[0], 0xFFFFFFFFu);
    EXPECT_EQ(ids[1], 0xFFFFFFFFu);
}
