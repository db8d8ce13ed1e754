#include "winport/process/program_search.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "winport/module/module_folders.h"
#include "winport/text/case_fold.h"
#include "winport/text/utf.h"

namespace winport {

namespace {

constexpr std::u16string_view kEnding = u".exe";

bool IsFile(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// The names that the file may have.
std::vector<std::string> FileNames(std::u16string_view name) {
    const std::size_t stem = name.size() - std::min(name.size(), kEnding.size());
    const bool hasEnding = stem != 0 && EqualsWithoutCase(name.substr(stem), kEnding);
    const std::u16string other =
        hasEnding ? std::u16string(name.substr(0, stem)) : std::u16string(name).append(kEnding);
    return {ToHostPath(name), ToHostPath(other)};
}

std::vector<std::string> SearchedFolders() {
    std::vector<std::string> folders = {ProgramFolder(), ".", WinportFolder(),
                                        WinportFolder() + "/" + WINPORT_PROGRAMS};
    const char* path = std::getenv("PATH");
    for (std::string_view rest = path != nullptr ? path : ""; !rest.empty();) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        folders.emplace_back(end != 0 ? rest.substr(0, end) : ".");
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return folders;
}

}  // namespace

std::string FindProgram(std::u16string_view name) {
    const bool hasFolder = name.find_first_of(u"\\/") != std::u16string_view::npos;
    const std::vector<std::string> folders = hasFolder ? std::vector<std::string>(1) : SearchedFolders();
    const std::vector<std::string> fileNames = FileNames(name);
    for (const std::string& folder : folders) {
        for (const std::string& file : fileNames) {
            std::string path = hasFolder ? file : std::string(folder).append("/").append(file);
            if (IsFile(path)) return path;
        }
    }
    return {};
}

}  // namespace winport
