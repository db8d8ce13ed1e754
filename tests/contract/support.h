// What the contract tests share: wide text and files of their own.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

using WideText = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;

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

// A folder that is removed with everything in it.
class TempFolder final {
  public:
    TempFolder() {
        static std::atomic<int> count{0};
        const std::string name =
            "contract-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);
        folder_ = std::filesystem::temp_directory_path() / name;
        std::filesystem::create_directories(folder_);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    WideText Path(WideView name) const { return (folder_ / std::filesystem::path(name)).string<WCHAR>(); }

    WideText WriteFile(WideView name, std::string_view bytes) const {
        std::ofstream(folder_ / std::filesystem::path(name), std::ios::binary) << bytes;
        return Path(name);
    }

    WideText MakeFolder(WideView name) const {
        std::filesystem::create_directories(folder_ / std::filesystem::path(name));
        return Path(name);
    }

  private:
    std::filesystem::path folder_;
};
