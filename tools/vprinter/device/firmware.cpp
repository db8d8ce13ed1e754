// The file's first line, and an upgrade as a span of time.
#include "vprinter/device/firmware.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>

#include "kwt/strings.h"
#include "vprinter/device/condition.h"

namespace vprinter {
namespace {

constexpr std::string_view kMagic = "ZRFW 1 ";
constexpr size_t kMaxLine = 128;

constexpr uint32_t kUpgradeUnderWay = 1999;
constexpr uint32_t kNoSuchFile = 100113;
constexpr uint32_t kBadFile = 100114;

}  // namespace

std::optional<FirmwareVersion> ReadFirmwareLine(std::string_view beginning) {
    if (!beginning.starts_with(kMagic)) return std::nullopt;
    std::string_view line = beginning.substr(kMagic.size());
    const size_t end = line.find('\n');
    if (end == std::string_view::npos) return std::nullopt;
    line = line.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);

    FirmwareVersion version;
    int64_t* const numbers[] = {&version.product, &version.customer, &version.lagoon};
    const char* at = line.data();
    const char* const lineEnd = at + line.size();
    for (int64_t* const number : numbers) {
        if (number != numbers[0] && (at == lineEnd || *at++ != '.')) return std::nullopt;
        int32_t value = 0;
        const auto [after, error] = std::from_chars(at, lineEnd, value);
        if (error != std::errc() || value < 0) return std::nullopt;
        *number = value;
        at = after;
    }
    return at == lineEnd ? std::optional(version) : std::nullopt;
}

std::optional<std::string> ReadBeginning(const std::string& path) {
    // The client has put the path into the ANSI code page. A slash separates folders on every system.
    const kwt::WideString wide(path.c_str());
    if (wide.GetBuffer() == nullptr) return std::nullopt;
    std::u16string name;
    for (const WCHAR* unit = wide.GetBuffer(); *unit != 0; ++unit)
        name += *unit == TEXT('\\') ? u'/' : static_cast<char16_t>(*unit);
    std::ifstream file(std::filesystem::path(name), std::ios::binary);
    std::string text(kMaxLine, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    // A folder can be opened but not read.
    if (file.bad() || !(file.good() || file.eof())) return std::nullopt;
    text.resize(static_cast<size_t>(file.gcount()));
    return text;
}

std::optional<FirmwareUpgrade::Refusal> FirmwareUpgrade::Begin(const std::string& path) {
    if (IsUnderWay()) return Refusal{kUpgradeUnderWay, "An upgrade is under way"};
    const std::optional<std::string> beginning = ReadBeginning(path);
    if (!beginning) return Refusal{kNoSuchFile, "The firmware file cannot be read"};
    const std::optional<FirmwareVersion> version = ReadFirmwareLine(*beginning);
    if (!version) return Refusal{kBadFile, "Expected a file that begins with ZRFW 1 and a version"};
    const std::string& product = model_.Value(opl::KeyText(opl::Key::ProductID));
    if (std::to_string(version->product) != product) {
        return Refusal{kBadFile, "Expected firmware for product " + product};
    }
    next_ = version;
    beganAt_ = tickMs_();
    return std::nullopt;
}

void FirmwareUpgrade::Advance() {
    if (!IsUnderWay() || tickMs_() - beganAt_ < DurationMs()) return;
    model_.Change(opl::KeyText(opl::Key::FWVersionLagoon), std::to_string(next_->lagoon));
    model_.Change(opl::KeyText(opl::Key::FWVersionCustomer), std::to_string(next_->customer));
    model_.Change(opl::KeyText(opl::Key::FWVersionPrinter),
                  fmt::format("{}.{}.{}", next_->product, next_->customer, next_->lagoon));
    next_.reset();
}

std::optional<uint32_t> FirmwareUpgrade::Percent() const {
    if (!IsUnderWay()) return std::nullopt;
    const uint64_t duration = std::max<uint64_t>(DurationMs(), 1);
    return static_cast<uint32_t>(std::min<uint64_t>((tickMs_() - beganAt_) * 100 / duration, 100));
}

uint64_t FirmwareUpgrade::DurationMs() const {
    return static_cast<uint64_t>(model_.Number(condition::kUpgradeSeconds)) * 1000;
}

}  // namespace vprinter
