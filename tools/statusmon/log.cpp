// The line, and where it goes.
#include "statusmon/log.h"

#include <fmt/core.h>

#include "shared/text.h"
#include "shared/time_text.h"
#include "shared/user_error.h"
#include "statusmon/platform.h"

namespace statusmon {

std::string LogLine(const LogEntry& entry) {
    const std::string printer =
        entry.printer.empty() ? "" : fmt::format(" \"{}\"", tools::ForTerminal(entry.printer));
    return fmt::format("{} client {}  {:4}  {}{}: {}\n", tools::LocalTimeOfDay(entry.time),
                       entry.clientProcessId, entry.letters, entry.meaning, printer, entry.outcome);
}

Log::Log(const std::string& path, const std::string& name) {
    if (!path.empty()) {
        if (!file_.Open(path))
            throw tools::UserError(
                fmt::format("the log {} cannot be opened; name another file with --log", path));
    } else if (!HasOutput()) {
        file_.Take(OpenStateFile(name));
    }
}

}  // namespace statusmon
