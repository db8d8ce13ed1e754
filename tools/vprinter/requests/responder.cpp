// The words as rows, settings by their key; the first refusal ends the request.
#include "vprinter/requests/responder.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <iterator>

#include "ipc/opl_channel.h"
#include "opl/value_escape.h"
#include "vprinter/device/condition.h"
#include "vprinter/device/status_block.h"
#include "vprinter/requests/reply_items.h"

namespace vprinter {
namespace {

constexpr uint32_t kLockedOrBusy = 1999;
constexpr uint32_t kBadCommand = 3400;
constexpr uint32_t kBadValue = 3450;
constexpr uint32_t kNotReached = 100003;

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
    bool needsDevice = false;  // the language monitor cannot answer by itself
};

constexpr Responder::WordRow Responder::kWords[] = {
    {opl::WordText(opl::Word::Ping), 0, &Responder::Acknowledge},
    {opl::WordText(opl::Word::Cancel), 0, &Responder::Acknowledge},
    {opl::WordText(opl::Word::LockPrinter), 2, &Responder::Lock},
    {opl::WordText(opl::Word::UnlockPrinter), 3, &Responder::Unlock},
    {opl::WordText(opl::Word::ClearFWCaps), 101, &Responder::Acknowledge},
    {opl::WordText(opl::Word::CalibrateHead), 96, &Responder::Acknowledge, true},
    {opl::WordText(opl::Word::PrintTestPage), 96, &Responder::Acknowledge, true},
    {opl::WordText(opl::Word::CleanHead), 96, &Responder::Acknowledge, true},
    {opl::WordText(opl::Word::CleanHeadThoroughly), 96, &Responder::Acknowledge, true},
    {opl::WordText(opl::Word::CheckNozzle), 96, &Responder::Acknowledge, true},
    {opl::WordText(opl::Word::AlignHead), 96, &Responder::Acknowledge, true},
    {opl::WordText(opl::Word::VTOE), 96, &Responder::Acknowledge, true},
    {opl::WordText(opl::Word::OrderInk), 0, &Responder::OrderSupplies, true},
    {opl::WordText(opl::Word::GetStatus), 0, &Responder::GetStatus},
    {opl::WordText(opl::Word::GetCapabilities), 0, &Responder::GetCapabilities},
    {opl::KeyText(opl::Key::TimeoutParam), 0, &Responder::AnnounceTimeout},
    {opl::KeyText(opl::Key::Cache), 101, &Responder::SwitchCache},
    {opl::KeyText(opl::Key::UpgradeFW), 101, &Responder::UpgradeFirmware, true},
};

Responder::Responder(DeviceModel& model, Surroundings surroundings)
    : model_(model),
      online_(model.Get(condition::kOnline)),
      surroundings_(std::move(surroundings)),
      live_(model, surroundings_) {}

void Responder::Adopt(Origin origin) {
    live_.Adopt(origin);
    firstReplies_ = std::move(origin.replies);
    fixedReplies_ = firstReplies_;
}

void Responder::Restart() {
    model_.RestoreDefaults({});
    fixedReplies_ = firstReplies_;
    sessions_ = {};
    ForgetLock();
}

std::string_view Responder::AnswerInVain(std::string_view request, uint32_t clientProcessId) {
    std::vector<std::string> values = model_.Values();
    auto fixedReplies = fixedReplies_;
    reply_ = Answer(request, clientProcessId);
    model_.PutBack(std::move(values));
    fixedReplies_ = std::move(fixedReplies);
    return reply_;
}

std::string_view Responder::Answer(std::string_view request, uint32_t clientProcessId, Reach reach) {
    if (live_.Upgrade().IsUnderWay()) live_.Upgrade().Advance();
    reach_ = reach;
    if (reach_ == Reach::Reached && !fixedReplies_.empty()) {
        const auto fixed = fixedReplies_.find(request);
        if (fixed != fixedReplies_.end()) return fixed->second;
    }
    if (request.ends_with('?') && reach_ == Reach::Reached && IsOnline()) {
        const Setting* const setting = model_.Find(request.substr(0, request.size() - 1));
        if (setting != nullptr && setting->spec.readable && !setting->spec.live) return setting->reply;
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
    Setting* const setting = model_.Find(command.key);
    const bool reachable = setting != nullptr && setting->spec.IsReachable();
    const std::string_view text = command.kind == CommandKind::Set ? command.key : command.text;
    const auto word = std::ranges::find(kWords, text, &WordRow::text);
    if (!reachable && word == std::end(kWords)) return Refuse(kBadCommand, "Unknown", command.text);
    if (reachable || word->needsDevice) {
        if (!IsOnline()) return Refuse(kNotReached, "The device does not answer", command.key);
        if (reach_ == Reach::Busy) return Refuse(kLockedOrBusy, "The device is busy", command.key);
    }
    const bool isAction = reachable ? command.kind != CommandKind::Query : word->needsDevice;
    if (isAction && IsLockedByAnother()) return RefuseAsLocked();
    return reachable ? CarryOutOnSetting(*setting, command) : (this->*word->carryOut)(*word, command);
}

bool Responder::CarryOutOnSetting(Setting& setting, const Command& command) {
    if (command.kind == CommandKind::Word)
        return Refuse(kBadCommand, "Neither a query nor a set", command.key);
    if (command.kind == CommandKind::Query) return ReadSetting(setting, command);
    if (!setting.spec.writable) return Refuse(kBadCommand, "Cannot be set", command.key);
    std::string problem = model_.Set(setting, command.value, command.kind == CommandKind::BinarySet);
    if (problem.empty() && setting.spec.live) problem = live_.Act(setting);
    if (!problem.empty()) return Refuse(kBadValue, problem, command.key);
    ForgetFixedReply(command.key);
    return Done(0, setting.Item());
}

void Responder::ForgetFixedReply(std::string_view key) {
    if (fixedReplies_.empty()) return;
    const auto fixed = fixedReplies_.find(std::string(key) + '?');
    if (fixed != fixedReplies_.end()) fixedReplies_.erase(fixed);
}

bool Responder::ReadSetting(const Setting& setting, const Command& command) {
    if (!setting.spec.readable) return Refuse(kBadCommand, "Cannot be read", command.key);
    if (!setting.spec.live) return Done(0, setting.Item());
    const LiveDevice::Reading reading = live_.Read(setting);
    return Done(reading.number, reading.items);
}

bool Responder::Done(uint32_t number, std::string_view item) {
    if (items_.size() + item.size() + 16 > ipc::kMaxOplMessage) {
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
    if (IsLockedByAnother()) return RefuseAsLocked();
    lockHolder_ = client_;
    return Acknowledge(row, command);
}

bool Responder::Unlock(const WordRow& row, const Command& command) {
    if (IsLockedByAnother()) return RefuseAsLocked();
    lockHolder_ = 0;
    return Acknowledge(row, command);
}

bool Responder::RefuseAsLocked() {
    return Refuse(kLockedOrBusy, "Locked by process", std::to_string(lockHolder_));
}

bool Responder::IsLockedByAnother() {
    return lockHolder_ != client_ && LockHolder() != 0;
}

uint32_t Responder::LockHolder() const {
    return lockHolder_ != 0 && surroundings_.isRunning(lockHolder_) ? lockHolder_ : 0;
}

bool Responder::GetStatus(const WordRow& row, const Command& command) {
    const std::string block = StatusBlock(model_, live_.Upgrade().Percent());
    return Done(row.number, ReplyItems().Block(command.key, block).Take());
}

bool Responder::GetCapabilities(const WordRow& row, const Command& command) {
    return Done(row.number, ReplyItems().Block(command.key, CapabilityBlock(model_)).Take());
}

bool Responder::OrderSupplies(const WordRow& row, const Command& command) {
    const bool taken = model_.Flag(condition::kOrdersSupplies);
    return Done(row.number, ReplyItems().Text(command.key, taken ? "TRUE" : "FALSE").Take());
}

bool Responder::UpgradeFirmware(const WordRow& row, const Command& command) {
    std::string path;
    opl::AppendEscaped(path, command.value);
    if (const auto refusal = live_.Upgrade().Begin(path)) {
        return Refuse(refusal->number, refusal->text, command.key);
    }
    return Done(row.number, command.key);
}

}  // namespace vprinter
