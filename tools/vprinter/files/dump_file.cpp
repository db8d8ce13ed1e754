// Part by part: what the model can have becomes its value, everything else a reply that is kept as it is.
#include "vprinter/files/dump_file.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <limits>
#include <optional>
#include <vector>

#include "catalogue/rows.h"
#include "opl/readable_text.h"
#include "shared/file.h"
#include "shared/json_lines.h"
#include "shared/text.h"
#include "shared/user_error.h"
#include "vprinter/device/address_book.h"
#include "vprinter/device/condition.h"
#include "vprinter/device/status_block.h"
#include "vprinter/files/dump_reader.h"
#include "vprinter/requests/reply_items.h"

namespace vprinter {
namespace {

constexpr int kDumpVersion = 1;
constexpr uintmax_t kMostBytes = 1 << 20;  // a dump has some tens of thousands
constexpr size_t kMostAccessPoints = 30;
constexpr size_t kMostHosts = 10;

constexpr std::string_view kQuery = "?";

class Reader final : private DumpReader {
  public:
    using DumpReader::DumpReader;

    [[nodiscard]] Origin Read() {
        ReadSettings();
        ReadStatus();
        ReadIdentity();
        ReadFirmware();
        ReadCapabilities();
        ReadClock();
        ReadAddressBook();
        ReadAccessPoints();
        ReadHosts();
        ReadPing();
        return std::move(origin_);
    }

  private:
    void ReadSettings();
    void ReadSetting(const catalogue::Row& row, const tools::Json& value);
    void ReadStatus();
    void TakeState(int64_t number, std::string_view text);
    void ReadIdentity();
    void ReadFirmware();
    void ReadCapabilities();
    void ReadClock();
    void ReadAddressBook();
    void ReadAccessPoints();
    void ReadHosts();
    void ReadPing();
};

// What the getter's type holds: a printer may say more than this model takes.
int64_t LowestOf(catalogue::Type type) {
    switch (type) {
        case catalogue::Type::S8:
            return std::numeric_limits<int8_t>::min();
        case catalogue::Type::S32:
            return std::numeric_limits<int32_t>::min();
        default:
            return 0;
    }
}
int64_t HighestOf(catalogue::Type type) {
    switch (type) {
        case catalogue::Type::U8:
            return std::numeric_limits<uint8_t>::max();
        case catalogue::Type::S8:
            return std::numeric_limits<int8_t>::max();
        case catalogue::Type::U16:
            return std::numeric_limits<uint16_t>::max();
        case catalogue::Type::S32:
            return std::numeric_limits<int32_t>::max();
        default:
            return std::numeric_limits<uint32_t>::max();
    }
}

void Reader::ReadSettings() {
    const bool secrets = document_.At("secrets") == "included";
    Part("settings", [&](const tools::Json& settings) {
        for (const auto& [name, value] : settings.Members()) {
            const auto row = std::ranges::find(catalogue::Rows(), name, &catalogue::Row::name);
            Member(settings, name, [&](const tools::Json& found) {
                if (row == catalogue::Rows().end() || !row->id || !row->CanRead())
                    Complain("no printer has a setting of this name; `kestrel list` prints all");
                if (secrets || !row->IsSecret()) ReadSetting(*row, found);
            });
        }
    });
}

void Reader::ReadSetting(const catalogue::Row& row, const tools::Json& value) {
    switch (model_.Get(row.key).spec.kind) {
        case ValueKind::Flag:
            return Set(row.key, FlagText(value));
        case ValueKind::Number:
            return Set(row.key,
                       std::to_string(Number(value, LowestOf(row.readType), HighestOf(row.readType))));
        default:
            return Set(row.key, Text(value));
    }
}

void Reader::ReadStatus() {
    Part("status", [&](const tools::Json& status) {
        Set(condition::kConnection, status.At("connection") == "usb" ? "USB" : "Network");
        if (const tools::Json* const inks = status.Find("inks")) {
            for (const tools::Json& ink : inks->Items()) {
                const std::string key = "ink." + ink.At("name").Text();
                const Place place(*this, key);
                if (std::ranges::find(condition::kInks, key) == std::end(condition::kInks))
                    Complain("the virtual printer has no such ink");
                Set(key, std::to_string(Number(ink.At("percent"), 0, 100)));
            }
        }
        Member(status, "trays", [&](const tools::Json& trays) {
            Set(opl::Key::UpperTrayLevel, std::to_string(Number(trays.At("upper"), 0, 255)));
            Set(opl::Key::LowerTrayLevel, std::to_string(Number(trays.At("lower"), 0, 255)));
            Set(opl::Key::PhotoTrayEngaged, FlagText(trays.At("photoEngaged")));
        });
        TakeState(Number(status.At("stateNumber"), 0, std::numeric_limits<uint32_t>::max()),
                  status.At("text").Text());
    });
}

// The state comes from what makes it where that suffices, so that it goes when its reason goes.
void Reader::TakeState(int64_t number, std::string_view text) {
    const Place place(*this, "stateNumber");
    const auto state = static_cast<PrinterState>(number);
    if (state == PrinterState::Offline) {
        Set(condition::kOnline, "NO");
    } else if (state == PrinterState::NotYetKnown) {
        Set(condition::kStatusKnown, "NO");
    } else if (StateOf(model_, false) != state) {
        if (ErrorWordOf(state).empty() || state == PrinterState::Ready)
            Complain(fmt::format("{} is no state that this printer can be in", number));
        Set(condition::kError, ErrorWordOf(state));
    }
    if (text == TextOf(state)) return;
    const Place textPlace(*this, "text");
    // The block widens each byte by itself.
    std::string bytes;
    for (const WCHAR unit : tools::WideFromUtf8(text).value_or(tools::WideText())) {
        if (unit > 0xFF) Complain("it has characters beyond U+00FF, which the virtual printer cannot show");
        bytes += static_cast<char>(unit);
    }
    Set(condition::kStatusText, bytes);
}

void Reader::ReadIdentity() {
    struct Service {
        std::string_view name;
        opl::Key key;
    };
    constexpr Service kServices[] = {{"gcp", opl::Key::GCPConfigured},
                                     {"pennant", opl::Key::PennantConfigured}};
    Part("identity", [&](const tools::Json& identity) {
        Member(identity, "usb", [&](const tools::Json& usb) {
            Set(opl::Key::VendorID, std::to_string(Number(usb.At("vendor"), 0, 0xFFFF)));
            Set(opl::Key::ProductID, std::to_string(Number(usb.At("product"), 0, 0xFFFF)));
        });
        // The printer names the services that it knows.
        ReplyItems known;
        bool all = true;
        for (const Service& service : kServices) {
            Member(identity, service.name, [&](const tools::Json& value) {
                if (value == nullptr) {
                    all = false;
                    return;
                }
                Set(service.key, FlagText(value));
                known.Text(opl::KeyText(service.key), FlagText(value));
            });
        }
        const std::string request = std::string(opl::KeyText(opl::Key::Configuration)) + '?';
        if (!all && !origin_.replies.contains(request)) Keep(request, known.Take());
    });
}

void Reader::ReadFirmware() {
    Part("firmware", [&](const tools::Json& firmware) {
        constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
        Set(opl::Key::FWVersionLagoon, std::to_string(Number(firmware.At("lagoon"), 0, kMost)));
        Set(opl::Key::FWVersionCustomer, std::to_string(Number(firmware.At("customer"), 0, kMost)));
        Set(opl::Key::FWVersionPrinter, Text(firmware.At("printer")));
    });
}

void Reader::ReadCapabilities() {
    Part("capabilities", [&](const tools::Json& capabilities) {
        Member(capabilities, "firmwareUpgrade",
               [&](const tools::Json& value) { Set(opl::Key::CapFWUpgrade, value.Flag() ? "OPL" : "None"); });
        Member(capabilities, "topOfFormEdge",
               [&](const tools::Json& value) { Set(opl::Key::CapTOFEdgeOverride, FlagText(value)); });
        Member(capabilities, "rbnVersion", [&](const tools::Json& value) {
            const int64_t letter = Number(value, 0, 127);
            Set(opl::Key::CapRBNVer, std::string(letter != 0 ? 1 : 0, static_cast<char>(letter)));
        });
        Member(capabilities, "block", [&](const tools::Json& value) {
            std::string block;
            for (const tools::Json& byte : value.Items())
                block += static_cast<char>(Number(byte, 0, 255));
            if (block.size() > kMostMessage - 64) Complain("the block is too long for a reply");
            if (block == CapabilityBlock(model_)) return;
            std::string_view word = opl::WordText(opl::Word::GetCapabilities);
            Keep(word, ReplyItems().Block(word.substr(0, word.size() - kQuery.size()), block).Take());
        });
    });
}

void Reader::ReadClock() {
    const std::string request = std::string(opl::KeyText(opl::Key::CurrentTimeRTC)) + '?';
    Part("clock", [&](const tools::Json& clock) {
        Member(clock, "text", [&](const tools::Json& text) {
            if (const tools::Json* const unset = text.Find("clockText"))
                return Keep(request,
                            ReplyItems().Text(opl::KeyText(opl::Key::CurrentTimeRTC), Text(*unset)).Take());
            constexpr int64_t kMost = 4'294'967'296;  // seconds that the clock's text can tell
            Set(condition::kClockOffset, std::to_string(Number(text.At("offsetSeconds"), -kMost, kMost)));
            Set(condition::kClockHost, Text(text.At("host")));
            Set(condition::kClockZone, Text(text.At("zone")));
        });
        Member(clock, "time", [](const tools::Json&) {});
    });
}

void Reader::ReadAddressBook() {
    Part("addressBook", [&](const tools::Json& book) {
        for (const AddressList& list : kAddressLists) {
            Member(book, list.name, [&](const tools::Json& entries) {
                for (const tools::Json& entry : entries.Items()) {
                    const Place place(*this, entry.At("number").Dump());
                    const uint64_t number = entry.At("number").Unsigned();
                    if (number >= list.records) Complain("there is no such record");
                    const auto key = [&](opl::RecordField field) { return RecordKey(list, number, field); };
                    const auto* const type =
                        std::ranges::find(kAddressTypes, entry.At("type").Text(), &AddressType::word);
                    if (type == std::end(kAddressTypes)) Complain("expected the type none, fax or email");
                    Set(key(opl::RecordField::AddressType), type->device);
                    Set(key(opl::RecordField::Name), Text(entry.At("name")));
                    Set(key(opl::RecordField::Address), Text(entry.At("address")));
                }
            });
        }
    });
}

// 02:4B:53:00:00:01, or nothing.
std::optional<std::string> MacBytes(std::string text) {
    std::ranges::replace(text, ':', ' ');
    std::optional<std::string> bytes = opl::FromHex(text);
    if (bytes && !bytes->empty() && bytes->size() != 6) return std::nullopt;
    return bytes;
}

void Reader::ReadAccessPoints() {
    Part("accessPoints", [&](const tools::Json& points) {
        if (points.Items().size() > kMostAccessPoints) Complain("expected at most 30");
        std::vector<std::string> names;
        for (const tools::Json& point : points.Items()) {
            const Place place(*this, point.At("ssid").Text());
            const std::optional<std::string> address = MacBytes(point.At("macAddress").Text());
            if (!address) Complain("expected six bytes as macAddress, such as 02:4B:53:00:00:01");
            const auto number = [&](std::string_view name) { return Number(point.At(name), 0, 0xFFFF); };
            origin_.accessPoints.push_back({Text(point.At("ssid")), *address, number("signalStrength"),
                                            number("beaconInterval"), number("capabilities"),
                                            number("channel"), number("encryption")});
            const std::string& name = origin_.accessPoints.back().name;
            names.push_back(name.empty() ? "(null)" : name);
        }
        if (!names.empty()) Set(condition::kNetworks, tools::Joined(names, ", "));
    });
}

void Reader::ReadHosts() {
    Part("hosts", [&](const tools::Json& list) {
        if (list.Items().size() > kMostHosts) Complain("expected at most 10");
        std::vector<std::string> hosts;
        for (const tools::Json& host : list.Items())
            hosts.push_back(Text(host));
        Set(condition::kHosts, tools::Joined(hosts, ", "));
        // A printer that tells hosts without a network, or one with a comma in its name.
        const bool connected = model_.Value(opl::KeyText(opl::Key::WirelessState)) == "Connected";
        if (hosts.empty() ||
            (connected && std::ranges::equal(ListParts(model_.Value(condition::kHosts)), hosts)))
            return;
        ReplyItems items;
        for (size_t i = 0; i < hosts.size(); ++i)
            items.Text(fmt::format("{}[{}]", opl::KeyText(opl::Key::MDNSHostList), i), hosts[i]);
        Keep(std::string(opl::KeyText(opl::Key::MDNSHostList)) + '?', items.Take(), "0101");
    });
}

void Reader::ReadPing() {
    Part("ping", [&](const tools::Json& ping) {
        Member(ping, "sent", [&](const tools::Json& value) {
            origin_.pingsSent = static_cast<uint32_t>(Number(value, 0, 255));
        });
        Member(ping, "answered", [&](const tools::Json& value) {
            origin_.pingsAnswered = static_cast<uint32_t>(Number(value, 0, 255));
        });
    });
}

constexpr std::string_view kParts[] = {"format",       "version",      "secrets", "settings",    "status",
                                       "identity",     "firmware",     "clock",   "addressBook", "hosts",
                                       "accessPoints", "capabilities", "ping"};

[[noreturn]] void RefuseAsForeign(const std::string& name, std::string_view why) {
    throw tools::UserError(
        fmt::format("{}: {}; expected a file that `kestrel dump -o FILE` has written", name, why));
}

}  // namespace

DumpFile DumpFile::Load(const std::string& path) {
    std::error_code error;
    const uintmax_t size = std::filesystem::file_size(path, error);
    if (!error && size > kMostBytes) RefuseAsForeign(path, fmt::format("it has {} bytes", size));
    const std::optional<std::string> text = tools::ReadFile(path);
    if (!text) throw tools::UserError(path + ": it cannot be read; check the name and its permissions");
    return Parse(*text, path);
}

DumpFile DumpFile::Parse(std::string_view text, const std::string& name) {
    if (text.size() > kMostBytes) RefuseAsForeign(name, fmt::format("it has {} bytes", text.size()));
    try {
        tools::Json document = tools::Json::Parse(text);
        if (document.At("format") != "kestrel-dump") RefuseAsForeign(name, "it is no dump of a printer");
        if (document.At("version") != kDumpVersion) {
            RefuseAsForeign(name, fmt::format("it is of version {}, and this program reads version {}",
                                              document.At("version").Dump(), kDumpVersion));
        }
        if (const std::string& secrets = document.At("secrets").Text();
            secrets != "included" && secrets != "left out")
            RefuseAsForeign(name, "\"secrets\" is neither \"included\" nor \"left out\"");
        for (const auto& [part, value] : document.Members()) {
            if (std::ranges::find(kParts, part) == std::end(kParts))
                RefuseAsForeign(name,
                                fmt::format("there is no part \"{}\" in a dump", tools::ForTerminal(part)));
        }
        return {std::move(document), name};
    } catch (const tools::JsonError& error) {
        const std::string where =
            error.Byte() != 0 ? fmt::format("{}:{}", name, tools::LineOfByte(text, error.Byte())) : name;
        RefuseAsForeign(where, error.what());
    }
}

Origin DumpFile::Adopt(DeviceModel& model) const {
    return Reader(document_, name_, model).Read();
}

}  // namespace vprinter
