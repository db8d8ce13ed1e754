// One question after the other; each answer is a value or an error.
#include "kestrel/printer/printer_dump.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <vector>

#include "kestrel/output/output.h"
#include "kestrel/printer/address_book.h"
#include "kestrel/printer/device_facts.h"
#include "kestrel/printer/device_status.h"
#include "kestrel/text/text.h"
#include "opl/message_text.h"
#include "opl/readable_text.h"
#include "opl/vocabulary.h"
#include "shared/time_text.h"

namespace cli {
namespace {

constexpr int kDumpVersion = 1;

// After so many time-outs in a row nothing more is asked: the rest would take minutes.
constexpr int kMostSilent = 2;

constexpr uint32_t kUpgrading = 101;

std::string QueryText(opl::Key key) {
    return fmt::format("{}?", opl::KeyText(key));
}

std::string FirstRecordQuery(opl::RecordList list) {
    return fmt::format("{}[0]{}?", opl::RecordListText(list),
                       opl::RecordFieldText(opl::RecordField::AddressType));
}

bool IsSilence(const Failure& failure) {
    return failure.exit == ExitCode::NoAnswer && failure.badReply.empty();
}

// The clock runs: what stays is how far it is from this computer's, and that is what is written. The second
// must be the same before and after the answer, or it is asked again.
tools::Json ReadClock(const Library& library, uint32_t timeoutMs) {
    constexpr size_t kHostDigits = 16;
    constexpr size_t kSecondsDigits = 8;
    constexpr size_t kDigits = 28;
    constexpr int kTries = 5;
    for (int left = kTries; left > 0; --left) {
        const int64_t before = tools::LocalSecondsSince2000();
        const std::string text = ReadClockText(library, timeoutMs);
        if (tools::LocalSecondsSince2000() != before && left > 1) continue;
        uint32_t seconds = 0;
        const char* const begin = text.data() + std::min(kHostDigits, text.size());
        const char* const end = text.data() + std::min(kHostDigits + kSecondsDigits, text.size());
        const bool read = std::from_chars(begin, end, seconds, 16).ptr == end && text.size() == kDigits;
        if (!read) return {{"clockText", text}};
        return {{"offsetSeconds", int64_t{seconds} - before},
                {"host", text.substr(0, kHostDigits)},
                {"zone", text.substr(kHostDigits + kSecondsDigits)}};
    }
    return {};
}

tools::Json ReadServiceJson(const Library& library, const CloudService& service, uint32_t timeoutMs) {
    const std::optional<bool> configured = ReadService(library, service, timeoutMs);
    return configured ? tools::Json(*configured) : nullptr;
}

class Dumper final {
  public:
    Dumper(const Printer& printer, uint32_t timeoutMs, const std::function<void(std::string_view)>& step)
        : printer_(printer), library_(printer.GetLibrary()), timeoutMs_(timeoutMs), step_(step) {}

    // The answer to `request`, by whose name it is known, or the error in its place, whose
    // reply hides what is secret.
    template <typename Read>
    tools::Json Ask(std::string_view name, std::string_view request, bool secret, Read read) {
        step_(name);
        ++dump_.asked;
        if (silent_ == kMostSilent) return Error(request, NotAsked());
        try {
            tools::Json answer = read();
            silent_ = 0;
            answered_ = true;
            return answer;
        } catch (Failure& failure) {
            if (failure.exit == ExitCode::OwnFault) throw;
            silent_ = IsSilence(failure) ? silent_ + 1 : 0;
            answered_ = answered_ || silent_ == 0;
            if (silent_ == kMostSilent && !answered_) throw;
            if (silent_ == 0 && failure.badReply.empty()) failure.badReply = RawReplyTo(request);
            if (secret) failure.badReply = Masked(failure.badReply);
            return Error(request, failure);
        }
    }
    template <typename Read>
    tools::Json Ask(std::string_view name, opl::Key key, Read read) {
        return Ask(name, QueryText(key), false, read);
    }

    void AskSettings(bool withSecrets);
    void AskStatusBlock();
    void AskIdentity();
    void AskFirmware();
    void AskCapabilities();
    void AskClock();
    void AskAddressBook();
    void AskNetwork();

    [[nodiscard]] PrinterDump Take() { return std::move(dump_); }

  private:
    static Failure NotAsked() {
        return {ExitCode::NoAnswer, "not asked: the printer had stopped answering", {}, {}, {}, {}};
    }

    tools::Json Error(std::string_view request, const Failure& failure) {
        ++dump_.failed;
        tools::Json error = FailureJson(failure);
        error["request"] = ReadableBytes(request);
        return {{"error", error}};
    }

    static std::string Masked(const std::string& readable) {
        return opl::MessageText(
            opl::FromReadable(readable).value_or(std::string()),
            {.endsInSecretKey = catalogue::EndsInSecretKey, .form = opl::MessageForm::Readable});
    }

    // Of a call that failed without a reply that it called bad.
    std::string RawReplyTo(std::string_view request) const {
        try {
            return ReadableBytes(printer_.Send(request).bytes);
        } catch (const Failure& failure) {
            return failure.badReply;
        }
    }

    const Printer& printer_;
    const Library& library_;
    uint32_t timeoutMs_;
    const std::function<void(std::string_view)>& step_;
    int silent_ = 0;  // time-outs in a row
    bool answered_ = false;
    PrinterDump dump_;
};

void Dumper::AskSettings(bool withSecrets) {
    tools::Json& document = dump_.document;
    document["format"] = "kestrel-dump";
    document["version"] = kDumpVersion;
    document["secrets"] = withSecrets ? "included" : "left out";
    tools::Json& settings = document["settings"] = tools::Json::EmptyObject();
    for (const catalogue::Row& row : catalogue::Rows()) {
        if (!row.CanRead() || !row.id) continue;
        const bool hidden = row.IsSecret() && !withSecrets;
        settings[row.name] = Ask(row.name, QueryText(*row.id), hidden, [&]() -> tools::Json {
            const Value value = printer_.Get(row);
            return hidden ? tools::Json(kSecretMask) : JsonValue(row, value);
        });
    }
}

void Dumper::AskStatusBlock() {
    const tools::Json status = Ask("status", opl::WordText(opl::Word::GetStatus), false,
                                   [&] { return StatusJson(AskDeviceStatus(printer_)); });
    if (const tools::Json* const state = status.Find("stateNumber");
        state != nullptr && *state == kUpgrading) {
        throw Failure{ExitCode::Locked,
                      "the printer's firmware is being replaced",
                      "dump the printer when that is over; `kestrel status` shows how far it is",
                      {},
                      {},
                      {}};
    }
    dump_.document["status"] = status;
}

void Dumper::AskIdentity() {
    tools::Json& identity = dump_.document["identity"];
    identity["usb"] = Ask("USB identifiers", opl::Key::VendorID, [&]() -> tools::Json {
        const UsbIdentifiers ids = ReadIdentifiers(library_, timeoutMs_);
        return {{"vendor", ids.vendor}, {"product", ids.product}};
    });
    for (const CloudService& service : kCloudServices) {
        identity[service.name] = Ask(service.name, opl::Key::Configuration,
                                     [&] { return ReadServiceJson(library_, service, timeoutMs_); });
    }
}

void Dumper::AskFirmware() {
    dump_.document["firmware"] = Ask("firmware", opl::Key::FWVersionLagoon, [&] {
        return FirmwareJson(ReadFirmwareVersions(library_, timeoutMs_));
    });
}

void Dumper::AskCapabilities() {
    tools::Json& capabilities = dump_.document["capabilities"];
    capabilities["firmwareUpgrade"] = Ask("firmware upgrade", opl::Key::CapFWUpgrade, [&]() -> tools::Json {
        return CanUpgradeFirmware(library_, timeoutMs_);
    });
    capabilities["topOfFormEdge"] =
        Ask("top-of-form edge", opl::Key::CapTOFEdgeOverride,
            [&]() -> tools::Json { return CanOverrideTopOfForm(library_, timeoutMs_); });
    const std::string version = QueryText(opl::Key::CapRBNVer) + QueryText(opl::Key::CapFWUpgrade);
    capabilities["rbnVersion"] = Ask("RBN version", version, false,
                                     [&]() -> tools::Json { return ReadRbnVersion(library_, timeoutMs_); });
    capabilities["block"] = Ask("capabilities", opl::WordText(opl::Word::GetCapabilities), false,
                                [&]() -> tools::Json { return ReadCapabilityBlock(library_); });
}

void Dumper::AskClock() {
    tools::Json& clock = dump_.document["clock"];
    clock["text"] = Ask("clock", opl::Key::CurrentTimeRTC, [&] { return ReadClock(library_, timeoutMs_); });
    // Its minutes are those of the text; what counts is whether it is told.
    clock["time"] = Ask("time", opl::Key::DeviceTime, [&]() -> tools::Json {
        static_cast<void>(ReadWallTime(library_, timeoutMs_));
        return "told";
    });
}

void Dumper::AskAddressBook() {
    constexpr std::array kLists = {opl::RecordList::SpeedDial, opl::RecordList::OneTouch};
    for (size_t i = 0; i < kLists.size(); ++i) {
        const AddressList& list = kAddressLists[i];
        dump_.document["addressBook"][list.name] = Ask(list.name, FirstRecordQuery(kLists[i]), false, [&] {
            return EntriesJson(ReadAddressList(library_, list, timeoutMs_));
        });
    }
}

void Dumper::AskNetwork() {
    dump_.document["accessPoints"] =
        Ask("access points", opl::Key::AccessPoints, [&] { return ReadAccessPoints(library_, timeoutMs_); });
    dump_.document["hosts"] = Ask("hosts", opl::Key::MDNSHostList,
                                  [&]() -> tools::Json { return ReadHosts(library_, timeoutMs_); });
    tools::Json& ping = dump_.document["ping"];
    ping["sent"] = Ask("pings sent", opl::Key::NumOfPingExecuted, [&]() -> tools::Json {
        return ReadCount(library_, "GetNumOfPingExecuted", "pings sent", timeoutMs_);
    });
    ping["answered"] = Ask("pings answered", opl::Key::NumOfPingSuccess, [&]() -> tools::Json {
        return ReadCount(library_, "GetNumOfPingSuccess", "pings answered", timeoutMs_);
    });
}

}  // namespace

PrinterDump DumpPrinter(const Printer& printer, bool withSecrets, uint32_t timeoutMs,
                        const std::function<void(std::string_view)>& step) {
    Dumper dumper(printer, timeoutMs, step);
    dumper.AskSettings(withSecrets);
    dumper.AskStatusBlock();
    dumper.AskIdentity();
    dumper.AskFirmware();
    dumper.AskCapabilities();
    dumper.AskClock();
    dumper.AskAddressBook();
    dumper.AskNetwork();
    return dumper.Take();
}

}  // namespace cli
