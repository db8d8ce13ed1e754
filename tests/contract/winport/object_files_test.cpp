// What lies in the object folder is not always what winport put there.
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <vector>

#include "forked.h"
#include "handle_support.h"

namespace {

namespace fs = std::filesystem;

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
    fs::create_symlink(target, FileOf("Link"));
    fs::create_directory(FileOf("Folder"));
    std::ofstream(FileOf("Loose")) << "x";
    fs::permissions(FileOf("Loose"), fs::perms::owner_all | fs::perms::others_write);
    fs::create_hard_link(target, FileOf("Hard"));
    for (const char* name : {"Link", "Folder", "Loose", "Hard"}) {
        EXPECT_FALSE(OpenGlobal(name)) << name;
        EXPECT_EQ(5u, GetLastError()) << name;
    }
    std::ifstream file(target);
    EXPECT_EQ("untouched", std::string(std::istreambuf_iterator<char>(file), {}));
    for (const char* name : {"Link", "Folder", "Loose", "Hard"})
        fs::remove(FileOf(name));
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
        const void* view = MapViewOfFile(section.Get(), access, 0, 0, 0);
        EXPECT_EQ(0u, OffsetOfMappingAt(view));
        EXPECT_TRUE(UnmapViewOfFile(view));
        EXPECT_FALSE(UnmapViewOfFile(view));
    }
}

TEST(Object_files, Without_a_free_handle_4_is_told_and_the_name_is_as_it_was) {
    std::vector<Handle> many;
    while (many.empty() || many.back())
        many.push_back(AutoEvent());
    EXPECT_EQ(4u, GetLastError());
    EXPECT_FALSE(OpenGlobal("NoHandle"));
    EXPECT_EQ(4u, GetLastError());
    EXPECT_FALSE(fs::exists(fs::path(std::getenv("WINPORT_HOME")) / "kernel" / "global.NoHandle"));
    many.clear();
    EXPECT_TRUE(OpenGlobal("NoHandle"));
    EXPECT_EQ(0u, GetLastError());
}

TEST(Object_files, A_forked_child_shares_the_objects_and_keeps_them_alive) {
    const WideText name = FreshName();
    Handle event = ManualEvent(name);
    const Handle mutex = Mutex(FreshName());
    WaitForSingleObject(mutex.Get(), 0);
    Forked child([&] {
        const bool owns = ReleaseMutex(mutex.Get()) != FALSE;
        const bool waited = WaitForSingleObject(event.Get(), 5000) == WAIT_OBJECT_0;
        const Handle own = AutoEvent(FreshName());
        return !owns && waited && own ? 0 : 1;
    });
    SetEvent(event.Get());
    EXPECT_EQ(0, child.Wait());
    EXPECT_TRUE(ReleaseMutex(mutex.Get()));
}

}  // namespace
