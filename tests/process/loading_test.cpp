// The library under other file names: refused, or a product of its own; and what unloading leaves.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "kwt/wide_text.h"

namespace {

namespace fs = std::filesystem;

// A copy of the library under the name <stem>.dll, by which programs load it.
WideText CopyAs(const std::string& stem) {
    const fs::path folder = std::getenv("KESTREL_TEST_FOLDER");
    const fs::path original = KESTREL_LIBRARY;
    const std::string prefix = original.extension() == ".so" ? "lib" : "";
    const fs::path copy = folder / (prefix + stem + original.extension().string());
    fs::remove(copy);
    fs::copy_file(original, copy);
    const std::string name = (folder / (stem + ".dll")).string();
    return WideText(name.begin(), name.end());
}

uint32_t CallNumber(HMODULE library, const char* name) {
    void* function = reinterpret_cast<void*>(GetProcAddress(library, name));
    return reinterpret_cast<uint32_t (*)()>(function)();
}

TEST(Loading, A_foreign_file_name_is_refused_with_1114_each_time) {
    for (const char* stem : {"foo", "SDK", "ACMESDKX"}) {
        const WideText path = CopyAs(stem);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(nullptr, LoadLibraryW(path.c_str())) << stem;
            EXPECT_EQ(1114u, GetLastError()) << stem;
            EXPECT_EQ(nullptr, GetModuleHandleW(path.c_str())) << stem;
        }
    }
    EXPECT_EQ(nullptr, LoadLibraryW(TEXT("/nowhere/NothingSDK.dll")));
    EXPECT_EQ(126u, GetLastError());
}

TEST(Loading, A_copy_of_another_product_loads_and_is_gone_when_freed) {
    for (const char* stem : {"ACMESDK", "acmesdk"}) {
        SCOPED_TRACE(stem);
        const WideText path = CopyAs(stem);
        for (int i = 0; i < 2; ++i) {
            const HMODULE library = LoadLibraryW(path.c_str());
            ASSERT_NE(nullptr, library) << GetLastError();
            EXPECT_EQ(10u, CallNumber(library, "GetSDKVersion"));
            EXPECT_EQ(100000u, CallNumber(library, "GetLastResponseNum"));
            EXPECT_EQ(library, LoadLibraryW(path.c_str()));
            EXPECT_TRUE(FreeLibrary(library));
            EXPECT_EQ(library, GetModuleHandleW(path.c_str()));
            EXPECT_TRUE(FreeLibrary(library));
            EXPECT_EQ(nullptr, GetModuleHandleW(path.c_str()));
        }
    }
}

TEST(Loading, A_thread_that_used_the_library_may_outlive_it) {
    const HMODULE library = LoadLibraryW(CopyAs("ACMESDK").c_str());
    ASSERT_NE(nullptr, library);
    std::latch used(1);
    std::latch freed(1);
    std::thread survivor([&] {
        CallNumber(library, "GetLastResponseNum");
        used.count_down();
        freed.wait();
    });
    used.wait();
    EXPECT_TRUE(FreeLibrary(library));
    freed.count_down();
    survivor.join();
}

// The channel to the status monitor that each thread's object keeps open.
const WideText kChannel = TEXT("Global\\ACMEStatMonClass-01042005RemoteControlChannel");

bool AnyObjectLives() {
    HANDLE event = CreateEventW(nullptr, TRUE, FALSE, (kChannel + TEXT("ServerIdleEvent")).c_str());
    const bool existed = GetLastError() == ERROR_ALREADY_EXISTS;
    CloseHandle(event);
    return existed;
}

// The threads know nothing of the library but one function; another program keeps the channel's transaction.
// What would wait for it in a thread's end would hold up the loader.
TEST(Loading, A_thousand_threads_take_their_objects_along_and_wait_for_nobody) {
    const HMODULE library = LoadLibraryW(CopyAs("ACMESDK").c_str());
    ASSERT_NE(nullptr, library);
    HANDLE transaction = CreateMutexW(nullptr, TRUE, (kChannel + TEXT("TransactionMutex")).c_str());
    ASSERT_NE(nullptr, transaction);
    std::atomic<int> objects = 0;
    for (int round = 0; round < 125; ++round) {
        std::vector<std::thread> threads(8);
        for (std::thread& thread : threads)
            thread = std::thread([&] {
                CallNumber(library, "GetLastResponseNum");
                if (AnyObjectLives()) ++objects;
            });
        const auto start = std::chrono::steady_clock::now();
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
        ASSERT_FALSE(AnyObjectLives()) << "an object outlived its thread, round " << round;
    }
    EXPECT_EQ(1000, objects);
    EXPECT_TRUE(FreeLibrary(library));
    ReleaseMutex(transaction);
    CloseHandle(transaction);
}

}  // namespace
