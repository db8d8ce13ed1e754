// What lies in the object folder is not always what winport put there.
#include <pthread.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "forked.h"
#include "handle_support.h"

namespace {

fs::path KernelFolder() {
    AutoEvent(FreshName());  // makes the folder
    return fs::path(std::getenv("WINPORT_HOME")) / "kernel";
}

// The file that stands for "Global\<name>".
fs::path FileOf(const std::string& name) {
    return KernelFolder() / ("global." + name);
}

Handle OpenGlobal(const std::string& name) {
    return AutoEvent(TEXT("Global\\") + WideText(name.begin(), name.end()));
}

TEST(Object_files, What_a_dead_process_left_is_replaced_whatever_it_is) {
    for (const std::string& content : {std::string(), std::string("garbage"), std::string(10000, 'x')}) {
        std::ofstream(FileOf("Stale")) << content;
        fs::permissions(FileOf("Stale"), fs::perms::owner_read | fs::perms::owner_write);
        const Handle event = OpenGlobal("Stale");
        ASSERT_TRUE(event);
        EXPECT_EQ(0u, GetLastError());
        EXPECT_EQ(4096u, fs::file_size(FileOf("Stale")));
    }
}

TEST(Object_files, A_planted_link_a_folder_and_a_loose_mode_are_refused_with_5_and_left_alone) {
    const fs::path target = KernelFolder() / "target";
    std::ofstream(target) << "untouched";
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(target, FileOf("Link"));
    fs::create_directory(FileOf("Folder"));
    std::ofstream(FileOf("Loose")) << "x";
    fs::permissions(FileOf("Loose"), fs::perms::owner_all | fs::perms::others_write);
    fs::create_hard_link(target, FileOf("Hard"));
    for (const char* name : {"Link", "Folder", "Loose", "Hard"}) {
        EXPECT_REFUSED(5, OpenGlobal(name)) << name;
        fs::remove(FileOf(name));
    }
    std::ifstream file(target);
    EXPECT_EQ("untouched", std::string(std::istreambuf_iterator<char>(file), {}));
    fs::remove(target);
}

// The offset in its file of the mapping that an address lies in.
unsigned long OffsetOfMappingAt(const void* address) {
    const auto asked = reinterpret_cast<uintptr_t>(address);
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        unsigned long begin = 0, end = 0, offset = 0;
        std::sscanf(line.c_str(), "%lx-%lx %*s %lx", &begin, &end, &offset);
        if (begin <= asked && asked < end) return offset;
    }
    return ~0ul;
}

// A kernel whose pages have 16 or 64 KiB maps no file from its fourth kibibyte.
TEST(Object_files, Are_mapped_from_their_beginning_whatever_the_view_is_for) {
    const Handle section = Section(100, FreshName());
    for (const DWORD access : {DWORD{FILE_MAP_ALL_ACCESS}, DWORD{FILE_MAP_READ}}) {
        const void* view = View(section, access);
        EXPECT_EQ(0u, OffsetOfMappingAt(view));
        EXPECT_TRUE(UnmapViewOfFile(view));
        EXPECT_FALSE(UnmapViewOfFile(view));
    }
}

TEST(Object_files, Without_a_free_handle_4_is_told_and_the_name_is_as_it_was) {
    std::vector<Handle> many;
    while (many.empty() || many.back())
        many.push_back(AutoEvent());
    EXPECT_REFUSED(4, AutoEvent());
    EXPECT_REFUSED(4, OpenGlobal("NoHandle"));
    EXPECT_FALSE(fs::exists(fs::path(std::getenv("WINPORT_HOME")) / "kernel" / "global.NoHandle"));
    many.pop_back();
    many.pop_back();
    EXPECT_TRUE(AutoEvent());
    many.clear();
    EXPECT_TRUE(OpenGlobal("NoHandle"));
    EXPECT_EQ(0u, GetLastError());
}

TEST(Object_files, Are_mapped_no_more_once_their_handles_are_closed) {
    AutoEvent(TEXT("Global\\Mapped"));
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        EXPECT_EQ(std::string::npos, line.find("global.Mapped"));
}

TEST(Object_files, Have_names_of_260_units_at_most) {
    const WideText name = TEXT("Global\\") + WideText(253, 'x');
    EXPECT_TRUE(AutoEvent(name));
    EXPECT_REFUSED(ERROR_FILENAME_EXCED_RANGE, AutoEvent(name + TEXT("x")));
}

TEST(Sections, What_is_not_honoured_is_refused) {
    const auto create = [](HANDLE file, DWORD protection, DWORD high, DWORD low) {
        return ErrorOf(
            [&] { return Handle(CreateFileMappingW(file, nullptr, protection, high, low, nullptr)); });
    };
    int file = 0;
    EXPECT_EQ(ERROR_NOT_SUPPORTED, create(&file, PAGE_READWRITE, 0, 100));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, create(INVALID_HANDLE_VALUE, 0x10, 0, 100));
    EXPECT_NE(ERROR_INVALID_PARAMETER, create(INVALID_HANDLE_VALUE, PAGE_READWRITE, 1, 0));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, create(INVALID_HANDLE_VALUE, PAGE_READWRITE, 1, 1));
    const Handle section = Section(100);
    EXPECT_REFUSED(ERROR_ACCESS_DENIED, View(section, 0));
}

// What failed before tells nothing of a call that succeeds.
TEST(Mutexes, Are_taken_after_a_call_that_a_signal_interrupted) {
    const Handle mutex = Mutex(FreshName());
    std::jthread([&] {
        errno = EINTR;
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(mutex, 0));
        EXPECT_TRUE(ReleaseMutex(mutex));
    });
}

// By the destructor of a key of the host, which runs after that of winport.
TEST(Mutexes, Taken_while_a_thread_ends_are_abandoned_too) {
    static const Handle mutex = Mutex();
    pthread_key_t key;
    ASSERT_EQ(0, ::pthread_key_create(&key, [](void*) { WaitForSingleObject(mutex, 0); }));
    std::jthread([&] {
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(mutex, 0));
        ReleaseMutex(mutex);
        ::pthread_setspecific(key, &key);
    });
    EXPECT_EQ(WAIT_ABANDONED, WaitForSingleObject(mutex, 0));
    ReleaseMutex(mutex);
    ::pthread_key_delete(key);
}

TEST(Object_files, A_forked_child_shares_the_objects_and_owns_none_of_its_parents_mutexes) {
    const Handle event = ManualEvent(FreshName());
    const Handle mutex = Mutex(FreshName());
    WaitForSingleObject(mutex, 0);
    Forked child([&] {
        const bool owns = ReleaseMutex(mutex) != FALSE;
        const bool waited = WaitForSingleObject(event, kPatience) == WAIT_OBJECT_0;
        const Handle own = AutoEvent(FreshName());
        return !owns && waited && own ? 0 : 1;
    });
    SetEvent(event);
    EXPECT_EQ(0, child.Wait());
    EXPECT_TRUE(ReleaseMutex(mutex));
}

}  // namespace
