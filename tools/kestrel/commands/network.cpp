// What the printer finds in its networks: access points, answers to pings, hosts.
#include <fmt/core.h>

#include <array>
#include <thread>

#include "kestrel/commands/commands.h"
#include "kestrel/output/progress.h"
#include "kestrel/printer/device_facts.h"
#include "kestrel/settings/offers.h"
#include "kestrel/settings/settings.h"
#include "kestrel/settings/values.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kPollInterval{500};
// A search that has found nothing new for so long has found what there is.
constexpr milliseconds kQuietEnd{3000};

// --- wifi ---

void WaitForSearch(Context& context, const Library& library, milliseconds limit) {
    const WaitLine line("searching access points", context.ShowsProgress());
    const Clock::time_point end = Clock::now() + limit;
    Clock::time_point lastNews = Clock::now();
    uint32_t found = 0;
    while (Clock::now() < end && (found == 0 || Clock::now() - lastNews < kQuietEnd)) {
        line.Show(fmt::format("{} found", found));
        std::this_thread::sleep_for(kPollInterval);
        const uint32_t now =
            ReadCount(library, "GetNumAccessPoints", "access points", context.Options().timeoutMs);
        if (now != found) lastNews = Clock::now();
        found = now;
    }
}

Report Scan(Context& context, milliseconds limit) {
    const Library& library = context.GetPrinter().GetLibrary();
    const uint32_t timeoutMs = context.Options().timeoutMs;
    Demand<decltype(StartSearchForAccessPoints)>(library, "StartSearchForAccessPoints",
                                                 {"cannot start the search for access points"}, timeoutMs);
    WaitForSearch(context, library, limit);

    Report report;
    report.data["accessPoints"] = ReadAccessPoints(library, timeoutMs);
    std::vector<std::vector<std::string>> rows = {{"SSID", "MAC ADDRESS", "CHANNEL", "SIGNAL", "ENCRYPTION"}};
    for (const tools::Json& point : report.data.At("accessPoints").Items()) {
        rows.push_back({ForTerminal(point.At("ssid").Text()), ForTerminal(point.At("macAddress").Text()),
                        point.At("channel").Dump(), point.At("signalStrength").Dump(),
                        point.At("encryption").Dump()});
    }
    report.text = rows.size() > 1 ? AlignedTable(rows, context.ResultPaint()) : "no access point was found\n";
    return report;
}

constexpr std::array<const char*, 9> kShownSettings = {
    "wireless.radio",         "wireless.state",   "wireless.ssid",
    "wireless.mode",          "wireless.channel", "wireless.authentication",
    "wireless.security-type", "wireless.speed",   "wireless.rssi-dbm"};

Report ShowWifi(Context& context) {
    Report report;
    std::vector<std::vector<std::string>> rows = {{"KEY", "VALUE"}};
    tools::Json& values = report.data["values"] = tools::Json::EmptyObject();
    for (const char* const name : kShownSettings) {
        const catalogue::Row& row = FindReadableSetting(name);
        const Value value = context.GetPrinter().Get(row);
        rows.push_back({name, ForTerminal(FormatValue(row, value))});
        values[name] = JsonValue(row, value);
    }
    report.text = AlignedTable(rows, context.ResultPaint());
    return report;
}

// In the order in which they are set: the network before what protects it.
struct WifiOption {
    const char* option;
    const char* setting;
    const char* help;
};
constexpr std::array<WifiOption, 6> kWifiOptions = {{
    {"--ssid", "wireless.ssid", "Name of the network"},
    {"--mode", "wireless.mode", "Direct or through an access point"},
    {"--channel", "wireless.channel", "Radio channel"},
    {"--authentication", "wireless.authentication", "How the printer joins"},
    {"--security", "wireless.security-type", "Encryption"},
    {"--pass-phrase", "wireless.pass-phrase", "Pass phrase of the network"},
}};
using WifiValues = std::array<std::string, kWifiOptions.size()>;

Report SetWifi(Context& context, const WifiValues& written) {
    struct Change {
        const catalogue::Row* row;
        Value value;
    };
    // All are understood before the first is sent.
    std::vector<Change> changes;
    for (size_t i = 0; i < kWifiOptions.size(); ++i) {
        if (written[i].empty()) continue;
        const catalogue::Row& row = FindWritableSetting(kWifiOptions[i].setting);
        changes.push_back({&row, ParseValue(row, written[i])});
    }
    if (changes.empty()) throw UsageFailure("nothing is given to set", "give at least --ssid");

    Report report;
    report.data["set"] = tools::Json::EmptyArray();
    for (const Change& change : changes) {
        try {
            context.GetPrinter().Set(*change.row, change.value);
        } catch (const Failure& failure) {
            report.failure = failure;
            break;
        }
        report.data["set"].Append(change.row->name);
    }
    return report;
}

// --- ping ---

struct PingOptions {
    std::string address;
    uint32_t count = 4;
    uint32_t wait = 2;
};

Report Ping(Context& context, const PingOptions& options) {
    const std::optional<uint32_t> address = ParseDottedAddress(options.address);
    if (!address) {
        throw ValueFailure(fmt::format("\"{}\" is no address", options.address),
                           "write four numbers with dots: 192.168.0.1");
    }
    const Library& library = context.GetPrinter().GetLibrary();
    const uint32_t timeoutMs = context.Options().timeoutMs;
    Demand<decltype(SetPing)>(library, "SetPing", {fmt::format("cannot ping {}", options.address)}, *address,
                              static_cast<uint8_t>(options.count), static_cast<uint8_t>(options.wait),
                              timeoutMs);

    uint32_t sent = 0;
    {
        const WaitLine line("pinging " + options.address, context.ShowsProgress());
        // The printer counts the time of a ping in its own unit, which is taken for a second here.
        const Clock::time_point end =
            Clock::now() + std::chrono::seconds(options.count * (options.wait + 1)) + kQuietEnd;
        while (sent < options.count && Clock::now() < end) {
            line.Show(fmt::format("{} of {} sent", sent, options.count));
            std::this_thread::sleep_for(kPollInterval);
            sent = ReadCount(library, "GetNumOfPingExecuted", "pings sent", timeoutMs);
        }
    }
    const uint32_t answered = ReadCount(library, "GetNumOfPingSuccess", "pings answered", timeoutMs);
    Report report{fmt::format("{}: {} pings sent, {} answered\n", options.address, sent, answered),
                  {{"address", options.address}, {"sent", sent}, {"answered", answered}},
                  {}};
    if (answered == 0) {
        report.failure = Failure{ExitCode::DeviceRefused,
                                 fmt::format("{} did not answer the printer", options.address),
                                 "check the address and the printer's network settings",
                                 {},
                                 {},
                                 {}};
    }
    return report;
}

// --- hosts ---

Report Hosts(Context& context) {
    const std::vector<std::string> hosts =
        ReadHosts(context.GetPrinter().GetLibrary(), context.Options().timeoutMs);
    Report report{{}, {{"hosts", hosts}}, {}};
    for (const std::string& host : hosts)
        report.text += ForTerminal(host) + '\n';
    if (report.text.empty()) report.text = "the printer has found no host\n";
    return report;
}

}  // namespace

void AddWifi(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("wifi", "The printer's wireless network");
    command.RequireSubcommand();

    const tools::Command show = command.AddSubcommand("show", "Print the wireless settings and state");
    show.Example("kestrel wifi show");
    show.OnUse([&chosen] { chosen = {"wifi show", ShowWifi, Reach::Several}; });

    const tools::Command scan = command.AddSubcommand("scan", "Let the printer search access points");
    const auto limit = std::make_shared<milliseconds>(15000);
    AddTimeOption(
        scan, "--wait", [limit](milliseconds time) { *limit = time; }, "Longest search [15s]");
    scan.Note(
        "The search ends earlier when nothing new has been found for 3 seconds. The encryption is the "
        "printer's own number.");
    scan.Example("kestrel wifi scan");
    scan.OnUse([&chosen, limit] {
        chosen = {"wifi scan", [limit](Context& context) { return Scan(context, *limit); }};
    });

    const tools::Command set = command.AddSubcommand("set", "Change several wireless settings");
    const auto values = std::make_shared<WifiValues>();
    for (size_t i = 0; i < kWifiOptions.size(); ++i)
        set.AddOption(kWifiOptions[i].option, (*values)[i], kWifiOptions[i].help)
            .TypeName("VALUE")
            .Offers([setting = kWifiOptions[i].setting](const auto&) {
                return OfferValues(FindSetting(setting));
            });
    set.Note("`kestrel list wireless` shows the allowed words.");
    set.Example("kestrel wifi set --ssid Office --security WPA2PSK_AES --pass-phrase \"open sesame\"");
    set.OnUse([&chosen, values] {
        chosen = {"wifi set", [values](Context& context) { return SetWifi(context, *values); },
                  Reach::Several};
    });
}

void AddPing(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("ping", "Let the printer ping an address");
    const auto options = std::make_shared<PingOptions>();
    command.AddOption("ADDRESS", options->address, "Dotted address").Required();
    command.AddOption("--count", options->count, "How many pings")
        .ShowsDefault()
        .TypeName("N")
        .Between(1, 255);
    command.AddOption("--wait", options->wait, "Time that the printer waits for each answer, in its own unit")
        .ShowsDefault()
        .TypeName("N")
        .Between(1, 255);
    command.Note("Without any answer the exit code is 1.");
    command.Example("kestrel ping 192.168.0.1");
    command.OnUse([&chosen, options] {
        chosen = {"ping", [options](Context& context) { return Ping(context, *options); }};
    });
}

void AddHosts(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("hosts", "Print the hosts that the printer found by multicast DNS");
    command.Example("kestrel hosts");
    command.OnUse([&chosen] { chosen = {"hosts", Hosts, Reach::Several}; });
}

}  // namespace cli
