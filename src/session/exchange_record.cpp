// A file of lines, opened at the first exchange.
#include "session/exchange_record.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>

#include "catalogue/rows.h"
#include "kwt/object_names.h"
#include "opl/message_text.h"

namespace session {
namespace {

constexpr const char* kFileVariable = "KESTREL_RECORD";
constexpr const char* kSecretsVariable = "KESTREL_RECORD_SECRETS";

bool IsSet(const char* variable) noexcept {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0' && std::strcmp(value, "0") != 0;
}

const bool kShowsSecrets = IsSet(kSecretsVariable);

struct CloseFile {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

// Nobody can be told of a full disk.
void Write(std::string_view line, std::FILE* file) {
    static_cast<void>(std::fwrite(line.data(), 1, line.size(), file));
}

// Without a buffer each line is one write, which the system appends.
std::FILE* RecordFile() {
    static const std::unique_ptr<std::FILE, CloseFile> file = [] {
        const char* const path = std::getenv(kFileVariable);
        std::unique_ptr<std::FILE, CloseFile> opened(path != nullptr ? std::fopen(path, "ab") : nullptr);
        if (!opened) return opened;
        static_cast<void>(std::setvbuf(opened.get(), nullptr, _IONBF, 0));
        if (std::fseek(opened.get(), 0, SEEK_END) == 0 && std::ftell(opened.get()) == 0) {
            const std::string first = std::string(R"({"format":"kestrel-record","version":1,"secrets":")") +
                                      (kShowsSecrets ? "included" : "left out") + "\"}\n";
            Write(first, opened.get());
        }
        return opened;
    }();
    return file.get();
}

void AppendNumber(std::string& line, uint64_t number, size_t digits = 1) {
    char text[20];
    const char* const end = std::to_chars(std::begin(text), std::end(text), number).ptr;
    const auto length = static_cast<size_t>(end - text);
    if (length < digits) line.append(digits - length, '0');
    line.append(text, length);
}

// "2026-11-24T17:30:05.250Z".
void AppendTime(std::string& line, std::chrono::system_clock::time_point time) {
    using namespace std::chrono;
    const auto midnight = floor<days>(time);
    const year_month_day date(midnight);
    const auto sinceMidnight = static_cast<uint64_t>(floor<milliseconds>(time - midnight).count());
    AppendNumber(line, static_cast<uint64_t>(static_cast<int>(date.year())), 4);
    line += '-';
    AppendNumber(line, static_cast<unsigned>(date.month()), 2);
    line += '-';
    AppendNumber(line, static_cast<unsigned>(date.day()), 2);
    line += 'T';
    AppendNumber(line, sinceMidnight / 3'600'000, 2);
    line += ':';
    AppendNumber(line, sinceMidnight / 60'000 % 60, 2);
    line += ':';
    AppendNumber(line, sinceMidnight / 1000 % 60, 2);
    line += '.';
    AppendNumber(line, sinceMidnight % 1000, 3);
    line += 'Z';
}

// `text` is printable ASCII.
void AppendQuoted(std::string& line, std::string_view text) {
    line += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\') line += '\\';
        line += c;
    }
    line += '"';
}

void AppendMessage(std::string& line, std::string_view message) {
    AppendQuoted(line, opl::MessageText(
                           message, {.endsInSecretKey = kShowsSecrets ? nullptr : catalogue::EndsInSecretKey,
                                     .form = opl::MessageForm::Readable}));
}

// The port behind the product's part of the channel's name; characters that are not ASCII become a question
// mark.
std::string PortOf(const WideText& channelName) {
    const WideText& base = kwt::ObjectNameTable::Instance()[kwt::ObjectName::CommandChannelBase];
    std::string port;
    for (const WCHAR unit : channelName.substr(std::min(base.size(), channelName.size())))
        port += unit >= 0x20 && unit < 0x7F ? static_cast<char>(unit) : '?';
    return port;
}

}  // namespace

const bool detail::kIsRecording = IsSet(kFileVariable);

void ExchangeRecord::Keep(const WideText& channelName, const Outcome& outcome) const noexcept {
    try {
        std::FILE* const file = RecordFile();
        if (file == nullptr) return;
        const auto microseconds =
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start_)
                .count();
        std::string line = R"({"time":")";
        AppendTime(line, time_);
        line += R"(","client":)";
        AppendNumber(line, GetCurrentProcessId());
        line += R"(,"printer":)";
        AppendQuoted(line, PortOf(channelName));
        line += R"(,"timeoutMs":)";
        AppendNumber(line, outcome.timeoutMs);
        line += R"(,"request":)";
        AppendMessage(line, outcome.request);
        if (!outcome.reply.empty()) {
            line += R"(,"reply":)";
            AppendMessage(line, outcome.reply);
        }
        line += R"(,"ms":)";
        AppendNumber(line, static_cast<uint64_t>(microseconds) / 1000);
        line += '.';
        AppendNumber(line, static_cast<uint64_t>(microseconds) % 1000, 3);
        line += R"(,"error":)";
        AppendNumber(line, outcome.error);
        line += "}\n";
        Write(line, file);
    } catch (...) {
    }
}

}  // namespace session
