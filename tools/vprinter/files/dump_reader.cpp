// Values judged before the model takes them.
#include "vprinter/files/dump_reader.h"

#include <fmt/core.h>

#include <charconv>
#include <optional>

#include "kwt/strings.h"
#include "opl/readable_text.h"
#include "shared/text.h"
#include "shared/user_error.h"

namespace vprinter {
namespace {

// What the printer's 8-bit code holds of a text; nothing when a character would be lost.
std::optional<std::string> DeviceBytes(std::string_view utf8) {
    const auto wide = tools::WideFromUtf8(utf8);
    if (!wide || wide->find(WCHAR{}) != tools::WideText::npos) return std::nullopt;
    std::string bytes = kwt::AsciiString(wide->c_str()).ToByteString();
    const kwt::WideString back(bytes.c_str());
    if (!wide->empty() && (back.GetBuffer() == nullptr || *wide != back.GetBuffer())) return std::nullopt;
    return bytes;
}

}  // namespace

void DumpReader::Complain(std::string_view problem) const {
    throw tools::UserError(fmt::format("{}: {}: {}; correct it, or dump the printer again", name_,
                                       tools::ForTerminal(tools::Joined(place_, ", ")), problem));
}

void DumpReader::Keep(std::string_view request, std::string_view items, std::string_view number) {
    origin_.replies[std::string(request)] = fmt::format("{},{};", number, items);
}

void DumpReader::Set(std::string_view key, std::string_view text) {
    const std::string problem = model_.Adopt(key, text);
    if (!problem.empty()) Complain(fmt::format("{}, found \"{}\"", problem, tools::ForTerminal(text)));
}

std::string DumpReader::Text(const tools::Json& value) const {
    const std::optional<std::string> bytes = DeviceBytes(value.Text());
    if (!bytes) Complain("it has characters that the system's code page lacks");
    return *bytes;
}

int64_t DumpReader::Number(const tools::Json& value, int64_t lowest, int64_t highest) const {
    int64_t number = 0;
    const std::string text = value.Dump();
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < lowest || number > highest)
        Complain(fmt::format("expected a whole number from {} to {} instead of {}", lowest, highest, text));
    return number;
}

void DumpReader::KeepError(const tools::Json& error) {
    const std::string request = Message(error.At("request"));
    const tools::Json* const reply = error.Find("badReply");
    origin_.replies[request] = reply != nullptr ? Message(*reply) : std::string();
}

std::string DumpReader::Message(const tools::Json& text) const {
    const std::optional<std::string> bytes = opl::FromReadable(text.Text());
    if (!bytes || bytes->size() > kMostMessage) Complain("expected a message in its readable form");
    return *bytes;
}

}  // namespace vprinter
