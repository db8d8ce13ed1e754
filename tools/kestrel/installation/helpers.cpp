// Both folders are told from where this program lies, so that an installed tree may be moved.
#include "kestrel/installation/helpers.h"

#include <windows.h>

#include <string_view>
#include <system_error>

namespace cli {
namespace {

namespace fs = std::filesystem;

fs::path OwnFolder() {
    WCHAR path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    return fs::path(std::basic_string_view<WCHAR>(path, length)).parent_path();
}

}  // namespace

fs::path FindHelper(std::string_view name) {
    std::error_code error;
    for (const fs::path& folder : {OwnFolder(), OwnFolder() / KESTREL_HELPERS}) {
        if (fs::exists(folder / name, error)) return folder / name;
    }
    return {};
}

}  // namespace cli
