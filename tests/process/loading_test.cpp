// The library under other file names: refused, or a product of its own; and what unloading leaves.
#include <array>
#include <atomic>
#include <latch>

#include "named_objects.h"
#include "precompiled.h"
#include "widened.h"

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
    return Widened((folder / (stem + ".dll")).string());
}

uint32_t CallNumber(HMODULE library, const char* name) {
    void* function = reinterpret_cast<void*>(GetProcAddress(library, name));
    return reinterpret_cast<uint32_t (*)()>(function)();
}

// Each thread's object has the channel to the status monitor open.
const WideText kChannel = TEXT("Global\\ACMEStatMonClass-01042005RemoteControlChannel");

bool AnyObjectLives() {
    const Handle event = NamedEvent(kChannel + TEXT("ServerIdleEvent"));
    return GetLastError() == ERROR_ALREADY_EXISTS;
}

TEST(Loading, Only_a_product_loads_under_its_name_and_is_gone_when_freed) {
    for (const std::string stem : {"foo", "SDK", "ACMESDKX", "ACMESDK", "acmesdk"}) {
        SCOPED_TRACE(stem);
        const bool isProduct = stem == "ACMESDK" || stem == "acmesdk";
        const WideText path = CopyAs(stem);
        for (int i = 0; i < 2; ++i) {
            const HMODULE library = LoadLibraryW(path.c_str());
            ASSERT_EQ(isProduct, library != nullptr) << GetLastError();
            if (isProduct) {
                EXPECT_EQ(10u, CallNumber(library, "GetSDKVersion"));
                EXPECT_EQ(100000u, CallNumber(library, "GetLastResponseNum"));
                EXPECT_EQ(library, LoadLibraryW(path.c_str()));
                EXPECT_TRUE(FreeLibrary(library));
                EXPECT_EQ(library, GetModuleHandleW(path.c_str()));
                EXPECT_TRUE(FreeLibrary(library));
            } else {
                EXPECT_EQ(1114u, GetLastError());
            }
            EXPECT_EQ(nullptr, GetModuleHandleW(path.c_str()));
        }
    }
    EXPECT_EQ(nullptr, LoadLibraryW(TEXT("/nowhere/NothingSDK.dll")));
    EXPECT_EQ(126u, GetLastError());
}

TEST(Loading, It_needs_a_slot_for_the_objects_of_its_threads_and_gives_it_back) {
    const WideText path = CopyAs("ACMESDK");
#ifdef _WIN32
    constexpr size_t kLost = 1;  // to the compiler's runtime, with each library that is unloaded
#else
    constexpr size_t kLost = 0;
#endif
    std::array<std::vector<DWORD>, 3> taken;
    for (std::vector<DWORD>& slots : taken) {
        for (DWORD slot = TlsAlloc(); slot != TLS_OUT_OF_INDEXES; slot = TlsAlloc())
            slots.push_back(slot);
        EXPECT_EQ(nullptr, LoadLibraryW(path.c_str()));
        EXPECT_EQ(1114u, GetLastError());
        for (const DWORD slot : slots)
            EXPECT_TRUE(TlsFree(slot));
        const HMODULE library = LoadLibraryW(path.c_str());
        ASSERT_NE(nullptr, library);
        CallNumber(library, "GetLastResponseNum");
        EXPECT_TRUE(AnyObjectLives());
        EXPECT_TRUE(FreeLibrary(library));
        EXPECT_FALSE(AnyObjectLives()) << "this thread's goes with the library";
    }
    EXPECT_EQ(taken[1].size(), taken[2].size() + kLost) << "but for what the first loading brought";
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

// The threads know nothing of the library but one function; another program keeps the transaction of their
// channel. What would wait for it in a thread's end would hold up the loader.
TEST(Loading, A_thousand_threads_take_their_objects_along_and_wait_for_nobody) {
    const HMODULE library = LoadLibraryW(CopyAs("ACMESDK").c_str());
    ASSERT_NE(nullptr, library);
    const Handle transaction = NamedMutex(kChannel + TEXT("TransactionMutex"), true);
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
    EXPECT_TRUE(ReleaseMutex(transaction.get())) << "it was not this one's";
}

}  // namespace
