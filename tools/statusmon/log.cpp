#include "statusmon/log.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <filesystem>

#include "shared/user_error.h"
#include "statusmon/settings.h"

namespace statusmon {

std::string LogLine(const LogEntry& entry) {
    const auto sinceEpoch =
        std::chrono::duration_cast<std::chrono::milliseconds>(entry.time.time_since_epoch());
    const std::string printer = entry.printer.empty() ? "" : fmt::format(" \"{}\"", entry.printer);
    return fmt::format("{:%H:%M:%S}.{:03} client {}  {:4}  {}{}: {}\n",
                       fmt::localtime(std::chrono::system_clock::to_time_t(entry.time)),
                       sinceEpoch.count() % 1000, entry.clientProcessId, entry.letters, entry.meaning,
                       printer, entry.outcome);
}

Log::Log(const std::string& path) {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (!folder.empty()) std::filesystem::create_directories(folder, error);
    file_.reset(std::fopen(path.c_str(), "a"));
    if (file_ == nullptr)
        throw tools::UserError(
            fmt::format("the log {} cannot be opened; name another file with --log", path));
}

void Log::WriteLine(const std::string& line) {
    std::FILE* const file = file_ != nullptr ? file_.get() : stdout;
    std::fwrite(line.data(), 1, line.size(), file);
    std::fflush(file);
}

}  // namespace statusmon
