// A library that refused its attach and stays all the same, for it was not LoadLibraryW that loaded it.
#include <dlfcn.h>

#include <map>
#include <set>

#include "precompiled.h"

namespace {

TEST(Refused, No_function_does_anything_and_each_says_why) {
    const auto copy = std::filesystem::path(std::getenv("KESTREL_TEST_FOLDER")) / "libfoo.so";
    std::filesystem::copy_file(KESTREL_LIBRARY, copy, std::filesystem::copy_options::overwrite_existing);
    void* const library = dlopen(copy.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(nullptr, library) << dlerror();
    struct Ended {
        uint32_t result;
        std::set<uint32_t> errors;
    };
    const std::map<std::string, Ended> others = {{"GetSDKVersion", {10, {77}}},
                                                 {"GetLastResponseNum", {100001, {1114}}},
                                                 {"SelectPrinter", {0, {77}}},  // it has no configuration
                                                 {"GetCopyQuality", {0, {0}}}};
    std::ifstream list(EXPORTS_LIST);
    for (std::string name; std::getline(list, name);) {
        if (name.empty() || name.starts_with('#') || name == "GetLastBadResponse") continue;
        SCOPED_TRACE(name);
        void* const function = dlsym(library, name.c_str());
        ASSERT_NE(nullptr, function);
        SetLastError(77);
        // Most return a byte.
        const uint64_t result = reinterpret_cast<uint64_t (*)(...)>(function)(0, 0, 0, 0, 0, 0);
        const auto other = others.find(name);
        const Ended expected = other != others.end() ? other->second : Ended{0, {22, 1114}};
        EXPECT_EQ(expected.result, result & (expected.result == 0 ? 0xFF : 0xFFFFFFFF));
        EXPECT_TRUE(expected.errors.contains(GetLastError())) << GetLastError();
    }
    WCHAR text[] = {TEXT('#'), TEXT('#')};
    const auto copyBad = reinterpret_cast<void (*)(WCHAR*, uint32_t)>(dlsym(library, "GetLastBadResponse"));
    copyBad(text, 2);
    EXPECT_EQ(0, text[0]);
    EXPECT_EQ(TEXT('#'), text[1]);
    dlclose(library);
}

}  // namespace
