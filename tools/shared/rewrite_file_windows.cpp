// The new file has a name that nobody else gives, and cannot be deleted while its writer has it open: one
// that can is what a killed writer has left.
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <string>

#include "shared/file.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kEnding = ".new";

// A file that somebody reads or puts in place at this moment is not replaced, and one that is closed but not
// yet moved is swept away by another writer: how often and how long that is waited for.
constexpr int kTries = 50;
constexpr DWORD kPauseMs = 10;
constexpr DWORD kPassing[] = {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_FILE_NOT_FOUND,
                              ERROR_FILE_EXISTS};

std::error_code Reason() {
    return {static_cast<int>(GetLastError()), std::system_category()};
}

// As long as the other system's.
std::string UniquePart() {
    static std::atomic<unsigned> count{0};
    constexpr std::string_view kDigits = "0123456789abcdefghijklmnopqrstuvwxyz";
    unsigned rest = GetCurrentProcessId() * 7919 + GetTickCount() + count++ * 104'729;
    std::string part = ".";
    for (int i = 0; i < 6; ++i, rest /= kDigits.size())
        part += kDigits[rest % kDigits.size()];
    return part;
}

void SweepLeftovers(const fs::path& path) {
    const std::u8string name = path.filename().u8string();
    std::error_code error;
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    for (fs::directory_iterator each(folder, error), end; !error && each != end; each.increment(error)) {
        const std::u8string other = each->path().filename().u8string();
        const bool isAlike = other.size() == name.size() + UniquePart().size() + kEnding.size() &&
                             other.starts_with(name + u8'.') && other.ends_with(u8".new");
        if (isAlike) DeleteFileW(each->path().c_str());
    }
}

std::error_code WriteInto(const fs::path& path, DWORD creation, std::string_view text) {
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, creation == CREATE_NEW ? 0 : FILE_SHARE_WRITE, nullptr,
                    creation, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return Reason();
    std::error_code error;
    while (!text.empty() && !error) {
        DWORD count = 0;
        const DWORD size = static_cast<DWORD>(std::min<size_t>(text.size(), 1u << 30));
        if (WriteFile(file, text.data(), size, &count, nullptr) == 0) error = Reason();
        text.remove_prefix(count);
    }
    if (!error && creation == CREATE_NEW && FlushFileBuffers(file) == 0) error = Reason();
    CloseHandle(file);
    return error;
}

std::error_code PutInPlace(const fs::path& path, std::string_view text) {
    fs::path fresh = path;
    fresh += UniquePart() + std::string(kEnding);
    std::error_code error = WriteInto(fresh, CREATE_NEW, text);
    if (error == std::error_code(ERROR_FILE_EXISTS, std::system_category())) return error;
    constexpr DWORD kHow = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (!error && MoveFileExW(fresh.c_str(), path.c_str(), kHow) == 0) error = Reason();
    if (error) DeleteFileW(fresh.c_str());
    return error;
}

}  // namespace

// Who may read a file is its folder's matter here.
std::error_code RewriteFile(const fs::path& path, std::string_view text, Readers) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) return WriteInto(path, OPEN_EXISTING, text);
    SweepLeftovers(path);
    for (int i = 0; i < kTries; ++i) {
        error = PutInPlace(path, text);
        if (std::ranges::find(kPassing, static_cast<DWORD>(error.value())) == std::end(kPassing)) break;
        Sleep(kPauseMs);
    }
    return error;
}

}  // namespace tools
