// The blocks, field by field.
#include "vprinter/device/status_block.h"

#include <algorithm>
#include <iterator>

#include "vprinter/device/condition.h"

namespace vprinter {
namespace {

constexpr uint32_t kLayoutVersion = 1;
constexpr uint32_t kNoProgress = 0xFFFFFFFF;
constexpr int64_t kLowInk = 15;  // percent

struct StateRow {
    std::string_view word;  // of status.error; empty for a state that the printer is in of its own accord
    PrinterState state;
    std::string_view name;
    std::string_view text;
};

constexpr StateRow kStates[] = {
    {"None", PrinterState::Ready, "ready", "Ready"},
    {"Paper_Out", PrinterState::PaperOut, "paper-out", "Load paper"},
    {"Paper_Jam", PrinterState::PaperJam, "paper-jam", "Remove the jammed paper"},
    {"Cover_Open", PrinterState::CoverOpen, "cover-open", "Close the cover"},
    {"Ink_Out", PrinterState::InkOut, "ink-out", "Replace the empty cartridge"},
    {"Cartridge_Missing", PrinterState::CartridgeMissing, "cartridge-missing",
     "Insert the missing cartridge"},
    {"Carriage_Stalled", PrinterState::CarriageStalled, "carriage-stalled", "Free the carriage"},
    {"Device_Error", PrinterState::DeviceError, "device-error", "Switch the printer off and on"},
    {"", PrinterState::Offline, "offline", "The printer does not answer"},
    {"", PrinterState::Upgrading, "upgrading", "The firmware is being replaced"},
    {"", PrinterState::NotYetKnown, "not-yet-known", ""},
};

/// Null for a number that is no state.
const StateRow* FindState(PrinterState state) {
    const auto* const row = std::ranges::find(kStates, state, &StateRow::state);
    return row != std::end(kStates) ? row : nullptr;
}

/// Zero-filled bytes of a fixed number.
class Block final {
  public:
    explicit Block(size_t size) : bytes_(size, '\0') {}

    void Put(size_t offset, uint64_t value, size_t width = 4) {
        for (size_t i = 0; i < width; ++i)
            bytes_[offset + i] = static_cast<char>(value >> (8 * i));
    }
    /// As much of the text as fits in front of `end` with its terminating zero.
    void PutText(size_t offset, size_t end, std::string_view text) {
        const size_t room = (end - offset) / 2 - 1;
        for (size_t i = 0; i < std::min(text.size(), room); ++i)
            Put(offset + 2 * i, static_cast<uint8_t>(text[i]), 2);
    }
    [[nodiscard]] std::string Take() { return std::move(bytes_); }

  private:
    std::string bytes_;
};

InkState InkStateOf(int64_t percent) {
    if (percent == 0) return InkState::Empty;
    return percent <= kLowInk ? InkState::Low : InkState::Enough;
}

void PutInks(Block& block, const DeviceModel& model) {
    size_t offset = status_layout::kInks;
    block.Put(status_layout::kInkCount, std::size(condition::kInks));
    for (const std::string_view ink : condition::kInks) {
        const int64_t percent = model.Number(ink);
        block.Put(offset, static_cast<uint64_t>(percent));
        block.Put(offset + 4, static_cast<uint64_t>(InkStateOf(percent)));
        offset += 8;
    }
}

}  // namespace

std::vector<std::string_view> ErrorWords() {
    std::vector<std::string_view> words;
    for (const StateRow& row : kStates) {
        if (!row.word.empty()) words.push_back(row.word);
    }
    return words;
}

Status StatusOf(const DeviceModel& model, std::optional<uint32_t> upgradePercent) {
    const PrinterState state = StateOf(model, upgradePercent.has_value());
    const StateRow& row = *FindState(state);
    const std::string_view text = model.Value(condition::kStatusText);
    // A status with a text counts as known, whatever its state.
    const bool ownText = text.empty() || state == PrinterState::NotYetKnown;
    return {state, row.name, ownText ? row.text : text};
}

std::string_view StateWord(uint32_t number) {
    const StateRow* const row = FindState(static_cast<PrinterState>(number));
    return row != nullptr ? row->name : "other";
}

std::string_view InkWord(int64_t percent) {
    constexpr std::string_view kWords[] = {"enough", "low", "empty"};
    return kWords[static_cast<size_t>(InkStateOf(percent))];
}

std::string_view ErrorWordOf(PrinterState state) {
    const StateRow* const row = FindState(state);
    return row != nullptr ? row->word : std::string_view();
}

std::string_view TextOf(PrinterState state) {
    const StateRow* const row = FindState(state);
    return row != nullptr ? row->text : std::string_view();
}

PrinterState StateOf(const DeviceModel& model, bool upgrading) {
    if (!model.Flag(condition::kStatusKnown)) return PrinterState::NotYetKnown;
    if (!model.Flag(condition::kOnline)) return PrinterState::Offline;
    if (upgrading) return PrinterState::Upgrading;
    const auto row = std::ranges::find(kStates, model.Value(condition::kError), &StateRow::word);
    if (row->state != PrinterState::Ready) return row->state;
    const auto isEmpty = [&](std::string_view key) { return model.Number(key) == 0; };
    if (std::ranges::any_of(condition::kInks, isEmpty)) return PrinterState::InkOut;
    const bool noPaper =
        isEmpty(opl::KeyText(opl::Key::UpperTrayLevel)) && isEmpty(opl::KeyText(opl::Key::LowerTrayLevel));
    return noPaper ? PrinterState::PaperOut : PrinterState::Ready;
}

std::string StatusBlock(const DeviceModel& model, std::optional<uint32_t> upgradePercent) {
    namespace at = status_layout;
    const Status status = StatusOf(model, upgradePercent);

    Block block(at::kWhole);
    block.Put(at::kSize, at::kWhole);
    block.Put(at::kVersion, kLayoutVersion);
    block.Put(at::kState, static_cast<uint64_t>(status.state));
    block.Put(at::kProgress, upgradePercent.value_or(kNoProgress));
    PutInks(block, model);
    block.Put(at::kUpperTray, static_cast<uint64_t>(model.Number(opl::KeyText(opl::Key::UpperTrayLevel))));
    block.Put(at::kLowerTray, static_cast<uint64_t>(model.Number(opl::KeyText(opl::Key::LowerTrayLevel))));
    block.Put(at::kPhotoTray, model.Flag(opl::KeyText(opl::Key::PhotoTrayEngaged)) ? 1 : 0);
    block.Put(at::kConnection, model.Value(condition::kConnection) == "USB" ? 1 : 0, 1);
    block.Put(at::kNetworkUp, model.Value(opl::KeyText(opl::Key::WirelessState)) == "Connected" ? 1 : 0, 1);
    block.PutText(at::kText, at::kFirmware, status.text);
    block.PutText(at::kFirmware, at::kName, model.Value(opl::KeyText(opl::Key::FWVersionPrinter)));
    block.PutText(at::kName, at::kWhole, model.Value(opl::KeyText(opl::Key::FriendlyName)));
    return block.Take();
}

std::string CapabilityBlock(const DeviceModel& model) {
    namespace at = capability_layout;
    constexpr uint32_t kEveryFeature = 1 | 2 | 4 | 8 | 16;
    Block block(at::kWhole);
    block.Put(at::kSize, at::kWhole);
    block.Put(at::kVersion, kLayoutVersion);
    block.Put(at::kFeatures, kEveryFeature);
    block.Put(at::kVendor, static_cast<uint64_t>(model.Number(opl::KeyText(opl::Key::VendorID))), 2);
    block.Put(at::kProduct, static_cast<uint64_t>(model.Number(opl::KeyText(opl::Key::ProductID))), 2);
    block.Put(at::kInks, std::size(condition::kInks));
    block.Put(at::kTrays, 2);
    block.Put(at::kSpeedDial, 60);
    block.Put(at::kOneTouch, 5);
    block.Put(at::kMaxCopies, 99);
    block.Put(at::kResolution, 4800);
    return block.Take();
}

}  // namespace vprinter
