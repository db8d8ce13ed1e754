#include <gtest/gtest.h>
#include <windows.h>
// The header below needs the one above.
#include <psapi.h>

#include <algorithm>
#include <thread>
#include <vector>

TEST(Process, Ids_are_stable_and_threads_differ) {
    EXPECT_NE(GetCurrentProcessId(), 0u);
    EXPECT_EQ(GetCurrentProcessId(), GetCurrentProcessId());
    const DWORD here = GetCurrentThreadId();
    EXPECT_EQ(GetCurrentThreadId(), here);
    DWORD there = here;
    std::thread([&] { there = GetCurrentThreadId(); }).join();
    EXPECT_NE(there, here);
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
    DWORD ids[2] = {0, 0xFFFFFFFF};
    DWORD needed = 99;
    EXPECT_TRUE(EnumProcesses(ids, sizeof(DWORD) + 3, &needed));
    EXPECT_EQ(needed, sizeof(DWORD));
    EXPECT_EQ(ids[1], 0xFFFFFFFFu);
}
