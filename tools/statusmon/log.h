// One readable line a request.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "shared/line_file.h"

namespace statusmon {

struct LogEntry {
    std::chrono::system_clock::time_point time;  // of the request
    uint32_t clientProcessId = 0;
    std::string_view letters;  // empty for a message that is no request
    std::string_view meaning;
    std::string_view printer;  // as the client says; empty when the request names none
    std::string_view outcome;
};

/// With its line feed, the only one: a name with line ends makes no line of its own.
[[nodiscard]] std::string LogLine(const LogEntry& entry);

/// Used by one thread at a time.
class Log final {
  public:
    /// `path`: a file to append to, which has to open (UserError). Without one the log goes to the output,
    /// and where there is none to the file `name` of the state folder, if this account has one.
    Log(const std::string& path, const std::string& name);

    void Write(const LogEntry& entry) { file_.Write(LogLine(entry)); }

  private:
    tools::LineFile file_{stdout};
};

}  // namespace statusmon
