// Libraries with and without version numbers behind their names, and links to them.
#include "child_process.h"
#include "support.h"

namespace {

struct Naming final {
    const char* file;
    std::vector<const char*> links;  // each to the file
    const WCHAR* asked;
    const WCHAR* shown;  // null: not found
};

WideText NameOf(HMODULE module) {
    WCHAR path[MAX_PATH];
    return {path, GetModuleFileNameW(module, path, MAX_PATH)};
}

TEST(Modules, Show_the_name_that_the_linker_knows_them_by_without_version_numbers) {
    const Naming rows[] = {
        {"libA.so", {}, TEXT("A.dll"), TEXT("A.dll")},
        {"libA.so.1.0.0", {"libA.so.1", "libA.so"}, TEXT("A.dll"), TEXT("A.dll")},
        {"libA.so.1.0.0", {"libA.so.1"}, TEXT("libA.so.1"), TEXT("A.dll")},
        {"libA.so.1.0.0", {}, TEXT("libA.so.1.0.0"), TEXT("A.dll")},
        {"libA.so.1.0.0", {"libB.so.1"}, TEXT("libB.so.1"), TEXT("B.dll")},
        {"libA.so.10.2", {"libA.so.9", "libA.so.10", "libA.so.x"}, TEXT("A"), TEXT("A.dll")},
        {"libA.so.10.2", {"libA.so.9"}, TEXT("A"), TEXT("A.dll")},
        {"libA.so", {}, TEXT("A.DLL"), TEXT("A.dll")},
        {"libA.1.so", {}, TEXT("A.1.dll"), TEXT("A.1.dll")},
        {"libA.so.1a", {}, TEXT("libA.so.1a"), TEXT("libA.so.1a")},
        {"libA.so.1.0.0", {"libA.so.x"}, TEXT("A.dll"), nullptr},
    };
    for (const Naming& row : rows) {
        SCOPED_TRACE(testing::Message() << row.file << ", asked for as " << fs::path(row.asked).string());
        const TempFolder folder;
        fs::copy_file(MODULE_PROBE, folder.Host(row.file));
        for (const char* link : row.links)
            fs::create_symlink(row.file, folder.Host(link));
        const HMODULE module = LoadLibraryW(folder.Path(row.asked).c_str());
        ASSERT_EQ(module != nullptr, row.shown != nullptr);
        if (module == nullptr) continue;
        EXPECT_EQ(NameOf(module), folder.Path(row.shown));
        EXPECT_EQ(GetModuleHandleW(folder.Path(row.asked).c_str()), module);
        EXPECT_EQ(GetModuleHandleW(row.shown), module);
        EXPECT_TRUE(FreeLibrary(module));
        EXPECT_EQ(GetModuleHandleW(row.shown), nullptr);
    }
}

TEST(Modules, Without_load_notices_are_told_of_no_thread) {
    for (const std::string file : {MODULE_PROBE, "libm.so.6"}) {
        const HMODULE module = LoadLibraryW(fs::path(file).string<WCHAR>().c_str());
        ASSERT_NE(module, nullptr);
        std::thread([] { TlsGetValue(0); }).join();
        EXPECT_TRUE(FreeLibrary(module));
    }
}

TEST(Modules, Are_found_beside_the_program) {
    const TempFolder folder;
    fs::copy_file(REGISTRY_PROBE, folder.Host("probe"));
    fs::copy_file(MODULE_PROBE, folder.Host("libBeside.so"));
    const Environment libraries = {{"LD_LIBRARY_PATH", fs::path(REGISTRY_PROBE).parent_path().string()}};
    EXPECT_EQ(ChildProcess({folder.Host("probe").string(), "load"}, libraries).Wait(), 0);
}

}  // namespace
