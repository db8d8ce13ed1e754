#include "vprinter/responder.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>

#include "ipc/opl_channel.h"

namespace vprinter {
namespace {

constexpr uint32_t kBusy = 1999;
constexpr uint32_t kBadCommand = 3400;
constexpr uint32_t kBadValue = 3450;

constexpr size_t kMaxSubject = 100;

/// What a refusal may quote of a request without upsetting the reader of the reply.
std::string Quotable(std::string_view subject) {
    std::string text(subject.substr(0, kMaxSubject));
    for (char& c : text) {
        const bool plain =
            c >= 0x20 && c <= 0x7E && std::string_view("&;?=#,").find(c) == std::string_view::npos;
        if (!plain) c = '_';
    }
    return text;
}

std::string_view WithoutTerminator(const Command& command) {
    return command.text.substr(0, command.text.size() - 1);
}

}  // namespace

/// A word of the language monitor: complete with its "?", or the key in front of a value.
struct Responder::WordRow {
    std::string_view text;
    uint32_t number;  // of the good reply
    bool (Responder::*carryOut)(const WordRow& row, const Command& command);
};

const Responder::WordRow Responder::kWords[] = {
    {WordText(OplWord::Ping), 0, &Responder::Acknowledge},
    {WordText(OplWord::Cancel), 0, &Responder::Acknowledge},
    {WordText(OplWord::LockPrinter), 2, &Responder::Lock},
    {WordText(OplWord::UnlockPrinter), 3, &Responder::Unlock},
    {WordText(OplWord::ClearFWCaps), 101, &Responder::Acknowledge},
    {WordText(OplWord::CalibrateHead), 96, &Responder::Acknowledge},
    {WordText(OplWord::PrintTestPage), 96, &Responder::Acknowledge},
    {WordText(OplWord::CleanHead), 96, &Responder::Acknowledge},
    {WordText(OplWord::CleanHeadThoroughly), 96, &Responder::Acknowledge},
    {WordText(OplWord::CheckNozzle), 96, &Responder::Acknowledge},
    {WordText(OplWord::AlignHead), 96, &Responder::Acknowledge},
    {WordText(OplWord::VTOE), 96, &Responder::Acknowledge},
    {KeyText(OplKey::TimeoutParam), 0, &Responder::AnnounceTimeout},
    {KeyText(OplKey::Cache), 101, &Responder::SwitchCache},
};

Responder::Responder(DeviceModel& model, ProcessCheck isRunning)
    : model_(model), isRunning_(std::move(isRunning)) {}

std::string_view Responder::Answer(std::string_view request, uint32_t clientProcessId) {
    if (request.ends_with('?')) {
        const Setting* const setting = model_.Find(request.substr(0, request.size() - 1));
        if (setting != nullptr && setting->spec.readable) return setting->reply;
    }
    client_ = clientProcessId;
    return AnswerCommands(request);
}

std::string_view Responder::AnswerCommands(std::string_view request) {
    number_ = 0;
    items_.clear();
    RequestReader reader(request);
    Command command;
    while (reader.Next(command)) {
        if (!CarryOut(command)) return reply_;
    }
    reply_.clear();
    fmt::format_to(std::back_inserter(reply_), "{:04},", number_);
    reply_ += items_;
    reply_ += ';';
    return reply_;
}

bool Responder::CarryOut(const Command& command) {
    if (command.kind == CommandKind::Malformed) return Refuse(kBadCommand, command.fault, command.text);
    if (Setting* const setting = model_.Find(command.key)) return CarryOutOnSetting(*setting, command);
    const std::string_view text = command.kind == CommandKind::Set ? command.key : command.text;
    const auto word = std::ranges::find(kWords, text, &WordRow::text);
    if (word == std::end(kWords)) return Refuse(kBadCommand, "Unknown", command.text);
    return (this->*word->carryOut)(*word, command);
}

bool Responder::CarryOutOnSetting(Setting& setting, const Command& command) {
    if (command.kind == CommandKind::Word)
        return Refuse(kBadCommand, "Neither a query nor a set", command.key);
    if (command.kind == CommandKind::Query) {
        if (!setting.spec.readable) return Refuse(kBadCommand, "Cannot be read", command.key);
        return Done(0, setting.Item());
    }
    if (!setting.spec.writable) return Refuse(kBadCommand, "Cannot be set", command.key);
    const std::string problem = model_.Set(setting, command.value, command.kind == CommandKind::BinarySet);
    if (!problem.empty()) return Refuse(kBadValue, problem, command.key);
    if (setting.spec.id == OplKey::RestoreDefaults) {
        model_.RestoreDefaults(setting.value == "Network" ? "DeviceNetwork." : "");
    }
    return Done(0, setting.Item());
}

bool Responder::Done(uint32_t number, std::string_view item) {
    if (items_.size() + item.size() + 16 > kMaxOplMessage) {
        return Refuse(kBadCommand, "The reply would not fit into one message", {});
    }
    if (number_ == 0) number_ = number;
    if (!items_.empty()) items_ += '&';
    items_ += item;
    return true;
}

bool Responder::Refuse(uint32_t number, std::string_view text, std::string_view subject) {
    reply_ = fmt::format("{:04},{}{}{};", number, text, subject.empty() ? "" : ": ", Quotable(subject));
    return false;
}

bool Responder::Acknowledge(const WordRow& row, const Command& command) {
    return Done(row.number, WithoutTerminator(command));
}

bool Responder::AnnounceTimeout(const WordRow& row, const Command& command) {
    const char* const end = command.value.data() + command.value.size();
    int32_t announcedMs = 0;
    const auto [after, error] = std::from_chars(command.value.data(), end, announcedMs);
    if (error != std::errc() || after != end) return Refuse(kBadValue, "Expected milliseconds", command.key);
    sessions_.Announce(client_, announcedMs);
    return Acknowledge(row, command);
}

bool Responder::SwitchCache(const WordRow& row, const Command& command) {
    if (command.value != "TRUE" && command.value != "FALSE") {
        return Refuse(kBadValue, "Expected TRUE or FALSE", command.key);
    }
    return Acknowledge(row, command);
}

bool Responder::Lock(const WordRow& row, const Command& command) {
    if (IsLockedByAnother()) return Refuse(kBusy, "Locked by process", std::to_string(lockHolder_));
    lockHolder_ = client_;
    return Acknowledge(row, command);
}

bool Responder::Unlock(const WordRow& row, const Command& command) {
    if (IsLockedByAnother()) return Refuse(kBusy, "Locked by process", std::to_string(lockHolder_));
    lockHolder_ = 0;
    return Acknowledge(row, command);
}

bool Responder::IsLockedByAnother() {
    return lockHolder_ != 0 && lockHolder_ != client_ && isRunning_(lockHolder_);
}

}  // namespace vprinter
