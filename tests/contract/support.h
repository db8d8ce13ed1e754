// What the contract tests share: wide text, files of their own, and calls that are refused.
#pragma once

#include <atomic>
#include <string_view>
#include <system_error>

#include "precompiled.h"

namespace fs = std::filesystem;

using WideText = std::basic_string<WCHAR>;

// Milliseconds: a loaded machine wakes threads late, never early.
inline constexpr DWORD kPatience = 10'000;

// The calls take writable pointers for texts that they only read.
inline LPWSTR Writable(const WCHAR* text) {
    return const_cast<LPWSTR>(text);
}

// The last-error value of a call that gives nothing; -1 for one that succeeds.
template <typename Call>
LONG ErrorOf(Call call) {
    SetLastError(0);
    return call() ? -1 : static_cast<LONG>(GetLastError());
}

// The call gives nothing, and this is the last-error value.
#define EXPECT_REFUSED(error, ...) EXPECT_EQ(ErrorOf([&] { return __VA_ARGS__; }), static_cast<LONG>(error))

// A folder that is removed with everything in it.
class TempFolder final {
  public:
    TempFolder() {
        static std::atomic<int> count{0};
        const std::string name =
            "contract-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);
        folder_ = fs::temp_directory_path() / name;
        fs::create_directories(folder_);
    }
    ~TempFolder() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    fs::path Host(const fs::path& name) const { return folder_ / name; }
    WideText Path(const fs::path& name) const { return Host(name).string<WCHAR>(); }

    WideText WriteFile(const fs::path& name, std::string_view bytes) const {
        std::ofstream(Host(name), std::ios::binary) << bytes;
        return Path(name);
    }

    WideText MakeFolder(const fs::path& name) const {
        fs::create_directories(Host(name));
        return Path(name);
    }

  private:
    fs::path folder_;
};
