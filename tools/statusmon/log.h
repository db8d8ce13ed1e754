// One readable line a request.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace statusmon {

struct LogEntry {
    std::chrono::system_clock::time_point time;  // of the request
    uint32_t clientProcessId = 0;
    std::string_view letters;  // empty for a message that is no request
    std::string_view meaning;
    std::string_view printer;  // empty when the request names none
    std::string_view outcome;
};

/// With its line feed.
[[nodiscard]] std::string LogLine(const LogEntry& entry);

/// Each line is on its way to the reader when Write returns.
class Log final {
  public:
    /// To the standard output.
    Log() = default;
    /// To the end of a file. Throws a UserError when it cannot be opened.
    explicit Log(const std::string& path);

    void Write(const LogEntry& entry) { WriteLine(LogLine(entry)); }
    void WriteLine(const std::string& line);

  private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, CloseFile> file_;
};

}  // namespace statusmon
