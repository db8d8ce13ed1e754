// Files with a line for each exchange: records of the library (KESTREL_RECORD, `kestrel record`) and traces
// of the virtual printer (`--trace json`).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

struct LoggedExchange final {
    std::string time;     // UTC, as it stands
    std::string printer;  // its port
    uint64_t client = 0;  // process
    std::string request;  // both in their readable form
    std::optional<std::string> reply;
    double ms = 0;
    uint32_t error = 0;  // the library's code; of a trace always 0
    std::string remark;  // of a trace
};

struct ExchangeLog final {
    bool isRecord = false;  // or a trace
    bool hasSecrets = false;
    std::vector<LoggedExchange> exchanges;  // in the order in which they ended
};

/// The whole file. Throws UserError, which says on which line and why, for one that is neither, is larger
/// than 256 MiB or has a line that cannot be understood. A last line without its end, of a process that was
/// killed while it wrote, is left out.
[[nodiscard]] ExchangeLog LoadExchangeLog(const std::string& path);
/// `name` stands for the file in complaints.
[[nodiscard]] ExchangeLog ParseExchangeLog(std::string_view text, const std::string& name);

}  // namespace tools
