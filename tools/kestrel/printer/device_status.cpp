// The record read byte by byte, its numbers turned into words.
#include "kestrel/printer/device_status.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include "kestrel/text/text.h"
#include "opl/opl_parser.h"
#include "opl/vocabulary.h"

namespace cli {
namespace {

// The layout that the product's language monitor and status monitor agree on; numbers are little-endian.
constexpr size_t kBlockSize = 0;
constexpr size_t kLayout = 4;
constexpr size_t kProgress = 12;
constexpr size_t kInkCount = 16;
constexpr size_t kInks = 20;  // percent and state of each
constexpr size_t kInkBytes = 8;
constexpr size_t kUpperTray = 60;
constexpr size_t kLowerTray = 64;
constexpr size_t kPhotoTray = 68;
constexpr size_t kNetworkUp = 741;

constexpr uint32_t kWholeBlock = 1316;
constexpr uint32_t kKnownLayout = 1;
constexpr uint32_t kNoUpgrade = 0xFFFFFFFF;

constexpr std::array<std::string_view, 5> kInkNames = {"black", "cyan", "magenta", "yellow", "photo"};
constexpr std::array<std::string_view, 3> kInkStates = {kEnoughInk, "low", "empty"};

struct StateWord {
    uint32_t state;
    std::string_view word;
};
constexpr std::array<StateWord, 11> kStateWords = {{{0, "ready"},
                                                    {1, "paper-out"},
                                                    {2, "paper-jam"},
                                                    {3, "cover-open"},
                                                    {4, "ink-out"},
                                                    {5, "cartridge-missing"},
                                                    {6, "carriage-stalled"},
                                                    {7, "device-error"},
                                                    {100, "offline"},
                                                    {101, "upgrading"},
                                                    {100000, "not-yet-known"}}};
constexpr std::string_view kOtherState = "other";

class RecordBytes final {
  public:
    explicit RecordBytes(const DeviceStatusRecord& record) {
        std::memcpy(bytes_.data(), &record, bytes_.size());
    }

    [[nodiscard]] uint32_t Number(size_t offset) const {
        uint32_t number = 0;
        for (size_t i = 4; i-- > 0;)
            number = number << 8 | bytes_[offset + i];
        return number;
    }
    [[nodiscard]] bool Flag(size_t offset) const { return bytes_[offset] != 0; }

  private:
    std::array<uint8_t, sizeof(DeviceStatusRecord)> bytes_{};
};

std::string_view WordOf(uint32_t state) {
    for (const StateWord& row : kStateWords) {
        if (row.state == state) return row.word;
    }
    return kOtherState;
}

StatusDetails ReadDetails(const RecordBytes& bytes) {
    StatusDetails details;
    const uint32_t progress = bytes.Number(kProgress);
    if (progress != kNoUpgrade) details.upgradePercent = progress;
    const size_t inks = std::min<size_t>(bytes.Number(kInkCount), kInkNames.size());
    for (size_t i = 0; i < inks; ++i) {
        const uint32_t state = bytes.Number(kInks + i * kInkBytes + 4);
        details.inks.push_back({kInkNames[i], bytes.Number(kInks + i * kInkBytes),
                                state < kInkStates.size() ? kInkStates[state] : "unknown"});
    }
    details.upperTray = bytes.Number(kUpperTray);
    details.lowerTray = bytes.Number(kLowerTray);
    details.photoTray = bytes.Number(kPhotoTray) != 0;
    details.networkUp = bytes.Flag(kNetworkUp);
    return details;
}

}  // namespace

DeviceStatus ReadStatus(const DeviceStatusRecord& record) {
    const RecordBytes bytes(record);
    DeviceStatus status;
    status.state = record.state;
    status.word = WordOf(record.state);
    // A text that fills its field has no terminator.
    const auto end = std::find(std::begin(record.text), std::end(record.text), kestrel_char{});
    status.text = Utf8FromWide({record.text, static_cast<size_t>(end - std::begin(record.text))});
    status.onUsb = record.onUsb != 0;
    if (bytes.Number(kBlockSize) == kWholeBlock && bytes.Number(kLayout) == kKnownLayout)
        status.details = ReadDetails(bytes);
    return status;
}

std::vector<std::string_view> StateWords() {
    std::vector<std::string_view> words;
    words.reserve(kStateWords.size() + 1);
    for (const StateWord& row : kStateWords)
        words.push_back(row.word);
    words.push_back(kOtherState);
    return words;
}

DeviceStatus AskForStatus(const Library& library) {
    DeviceStatusRecord record{};
    Demand<decltype(GetStatus)>(library, "GetStatus", {"cannot read the status", Exchange::Read}, &record,
                                static_cast<uint32_t>(sizeof(record)));
    return ReadStatus(record);
}

DeviceStatus AskDeviceStatus(const Printer& printer) {
    const RawReply reply = printer.Send(opl::WordText(opl::Word::GetStatus));
    std::vector<uint8_t> block;
    DeviceStatusRecord record{};
    if (!opl::OPLParser::GetBinaryValue(reply.bytes, block) || block.size() < sizeof(record)) {
        throw Failure{ExitCode::BadReply,
                      "cannot read the status: the reply is no status block",
                      "install the client that belongs to the device's firmware",
                      {},
                      ReadableBytes(reply.bytes),
                      reply.responseNumber};
    }
    std::memcpy(&record, block.data(), sizeof(record));
    return ReadStatus(record);
}

std::string InksText(const StatusDetails& details) {
    std::string text;
    for (const InkLevel& ink : details.inks)
        text += fmt::format("ink         {:<8} {:>3} % {}\n", ink.name, ink.percent, ink.state);
    return text;
}

tools::Json InksJson(const StatusDetails& details) {
    tools::Json inks = tools::Json::EmptyArray();
    for (const InkLevel& ink : details.inks)
        inks.Append({{"name", ink.name}, {"percent", ink.percent}, {"state", ink.state}});
    return inks;
}

std::string StatusText(const DeviceStatus& status) {
    std::string text = fmt::format("state       {} ({})\n", status.word, status.state);
    if (!status.text.empty()) text += fmt::format("text        {}\n", ForTerminal(status.text));
    text += fmt::format("connection  {}\n", status.onUsb ? "USB" : "network");
    if (!status.details) return text;

    const StatusDetails& details = *status.details;
    if (details.upgradePercent) text += fmt::format("upgrade     {} %\n", *details.upgradePercent);
    text += InksText(details);
    text += fmt::format("trays       upper {} %, lower {} %, photo tray {}\n", details.upperTray,
                        details.lowerTray, details.photoTray ? "engaged" : "not engaged");
    text += fmt::format("wireless    {}\n", details.networkUp ? "connected" : "not connected");
    return text;
}

tools::Json StatusJson(const DeviceStatus& status) {
    tools::Json json = {{"state", status.word},
                        {"stateNumber", status.state},
                        {"text", status.text},
                        {"connection", status.onUsb ? "usb" : "network"}};
    if (!status.details) return json;

    const StatusDetails& details = *status.details;
    if (details.upgradePercent) json["upgradePercent"] = *details.upgradePercent;
    json["inks"] = InksJson(details);
    json["trays"] = {
        {"upper", details.upperTray}, {"lower", details.lowerTray}, {"photoEngaged", details.photoTray}};
    json["networkUp"] = details.networkUp;
    return json;
}

}  // namespace cli
