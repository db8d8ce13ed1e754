// What passes between the clients and the printers, for people or for programs. Nothing is formatted while
// no trace is wanted, and an exchange is written only after its reply is on the way.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace vprinter {

enum class TraceFormat : uint8_t { None, Text, Json };

/// One request and what became of it.
struct Exchange {
    std::chrono::system_clock::time_point time;  // of the request
    std::string_view port;
    uint32_t clientProcessId = 0;
    std::string_view request;
    std::string_view reply;
    std::chrono::nanoseconds duration{};  // from the request to the end of the reply
    std::string_view remark;              // what was out of the ordinary; empty for nothing
};

/// Secrets (pass phrase, security keys) become "*****" unless `showSecrets`. The text form cuts long messages
/// and writes binary blocks as hexadecimal numbers; both forms end in a line feed.
[[nodiscard]] std::string TextLine(const Exchange& exchange, bool showSecrets);
[[nodiscard]] std::string JsonLine(const Exchange& exchange, bool showSecrets);

/// May be used from several threads.
class Trace final {
  public:
    /// Writes to the error output.
    Trace(TraceFormat format, bool showSecrets) : format_(format), showSecrets_(showSecrets) {}

    /// Goes on at the end of a file instead; false when it cannot be opened.
    [[nodiscard]] bool OpenFile(const std::string& path);

    [[nodiscard]] bool IsOn() const { return format_ != TraceFormat::None; }
    void Write(const Exchange& exchange);

  private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    TraceFormat format_;
    bool showSecrets_;
    std::mutex lock_;
    std::unique_ptr<std::FILE, CloseFile> file_;
};

}  // namespace vprinter
