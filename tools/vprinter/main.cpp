// kestrel-vprinter: printers that exist in this process only, answering on the channels of a language
// monitor.
#include <fmt/core.h>

#include <algorithm>
#include <deque>
#include <exception>
#include <future>
#include <optional>
#include <string>
#include <vector>

#include "http/visitor.h"
#include "shared/exchange_log.h"
#include "shared/file.h"
#include "shared/process.h"
#include "shared/text.h"
#include "shared/user_error.h"
#include "vprinter/api/api.h"
#include "vprinter/api/traffic.h"
#include "vprinter/device/condition.h"
#include "vprinter/files/control_file.h"
#include "vprinter/files/dump_file.h"
#include "vprinter/service/options.h"
#include "vprinter/service/server.h"
#include "vprinter/web/web_server.h"

namespace {

using namespace vprinter;

constexpr std::string_view kUsbPort = "USB";

/// Ends the program with an exit code of its own.
struct Refusal {
    tools::ExitCode code;
    std::string text;
};

std::vector<FaultRule> LoadFaults(const Options& options) {
    if (options.faultsFile.empty()) return {};
    const std::optional<std::string> text = tools::ReadFile(options.faultsFile);
    if (!text)
        throw tools::UserError(options.faultsFile + " cannot be read; check the name and its permissions");
    std::vector<FaultRule> rules = ParseFaults(*text, options.faultsFile);
    for (const std::string& port : PrintersNamed(rules)) {
        if (std::find(options.ports.begin(), options.ports.end(), port) == options.ports.end()) {
            throw tools::UserError(fmt::format(
                "{} has a rule for printer {}, which is not served; add --port {} or correct the rule",
                options.faultsFile, port, port));
        }
    }
    return rules;
}

struct MadePrinter {
    DeviceModel model;
    Origin origin;
};

MadePrinter MakePrinter(const Options& options, const std::string& port, const StateFile* state) {
    MadePrinter made;
    DeviceModel& model = made.model;
    const bool isCopy = !options.dumpFile.empty();
    if (isCopy) made.origin = DumpFile::Load(options.dumpFile).Adopt(model);
    if (!options.modelName.empty()) {
        const std::string problem = model.SetInitial(opl::KeyText(opl::Key::FriendlyName), options.modelName);
        if (!problem.empty()) throw tools::UserError("--model-name: " + problem);
    }
    if (!isCopy && !port.starts_with(kUsbPort))
        static_cast<void>(model.SetInitial(condition::kConnection, "Network"));
    if (state != nullptr) state->Restore(port, model);
    FaultScript ignored;  // the server reads the file again, with its first request
    const std::string problem = ControlFile(options.controlFile, port).Apply(model, ignored, 0);
    if (!problem.empty()) throw tools::UserError(problem);
    return made;
}

/// All printers of this process.
class Printers final {
  public:
    Printers(const Options& options, tools::EndRequest& end)
        : options_(options), trace_(options.traceFormat, options.showSecrets), end_(end) {
        if (!options.traceFile.empty() && !trace_.OpenFile(options.traceFile)) {
            throw tools::UserError(options.traceFile + " cannot be opened; check --trace-file");
        }
        if (!options.stateFile.empty()) state_.emplace(options.stateFile).Load();
        if (!options.recordFile.empty()) record_ = tools::LoadExchangeLog(options.recordFile);
        const std::vector<FaultRule> faults = LoadFaults(options);
        for (const std::string& port : options.ports)
            Add(port, faults);
    }

    void Start() {
        std::vector<std::future<bool>> opened;
        for (PrinterServer& server : servers_)
            opened.push_back(server.Start());
        bool all = true;
        for (std::future<bool>& isOpen : opened)
            all = isOpen.get() && all;
        if (!all) throw Refusal{tools::kOwnFault, "not every printer could be started"};
    }

    void Stop() {
        for (PrinterServer& server : servers_)
            server.Stop();
    }

    /// For the panel; lives as long as this.
    [[nodiscard]] api::ServedPrinters Served() {
        return {options_.ports,
                [this](size_t printer, const PrinterWork& work) { return servers_[printer].Do(work); }};
    }
    [[nodiscard]] api::Traffic& Traffic() { return traffic_; }

    [[nodiscard]] bool HasFailed() const {
        return std::any_of(servers_.begin(), servers_.end(),
                           [](const PrinterServer& server) { return server.HasFailed(); });
    }

    /// What became of the records; the printers have been stopped.
    [[nodiscard]] bool HaveClientsDeparted() const {
        bool departed = false;
        for (const PrinterServer& server : servers_) {
            const Replay* const replay = server.Replayed();
            if (replay == nullptr) continue;
            fmt::print(stderr, "kestrel-vprinter: {}: {} exchanges replayed, {} departures\n", server.Port(),
                       replay->Replayed(), replay->Departures());
            departed = departed || replay->Departures() > 0;
        }
        return departed;
    }

  private:
    void Add(const std::string& port, const std::vector<FaultRule>& faults) {
        const WideText channelName = ChannelName(options_.product, port);
        if (channelName.empty()) {
            throw tools::UserError("--product " + options_.product +
                                   " makes no channel name; expected a prefix such as " KESTREL_PRODUCT);
        }
        if (!claims_.emplace_back(channelName).Take()) {
            throw Refusal{
                tools::kRunsAlready,
                fmt::format("printer {} of product {} is served by another virtual printer that is still "
                            "running; end that one or choose another --port",
                            port, options_.product)};
        }
        StateFile* const state = state_ ? &*state_ : nullptr;
        MadePrinter made = MakePrinter(options_, port, state);
        servers_.emplace_back(
            port, channelName, std::move(made.model), std::move(made.origin), FaultsFor(port, faults),
            ReplayOn(port),
            PrinterServer::Shared{trace_, state, options_.controlFile, [this] { EndUnlessReplaying(); },
                                  options_.web ? &traffic_ : nullptr});
    }

    [[nodiscard]] std::optional<Replay> ReplayOn(const std::string& port) const {
        if (!record_) return {};
        return Replay(*record_, options_.recordFile, port, options_.pace, options_.loops);
    }

    // A record that is over on one printer may go on on another.
    void EndUnlessReplaying() {
        const bool goesOn = !HasFailed() && std::ranges::any_of(servers_, [](const PrinterServer& server) {
            return !server.HasReplayedAll();
        });
        if (!goesOn) end_.Raise();
    }

    const Options& options_;
    Trace trace_;
    api::Traffic traffic_;
    tools::EndRequest& end_;
    std::optional<StateFile> state_;
    std::optional<tools::ExchangeLog> record_;
    std::deque<PrinterClaim> claims_;  // outlive the servers: nobody else starts before they have ended
    std::deque<PrinterServer> servers_;
};

tools::ExitCode Run(const Options& options) {
    const std::string token =
        options.web ? http::LoadToken(*options.web, options.webTokenFile, {"--web", "--web-token"}) : "";
    tools::EndRequest end;
    Printers printers(options, end);
    printers.Start();
    const api::Api api(printers.Served());
    std::optional<web::WebServer> web;
    if (options.web) {
        web.emplace(*options.web, token, api, printers.Traffic());
        fmt::print("panel: {}\n", web->Url());
    }
    fmt::print("ready: {}\n", tools::Joined(options.ports, " "));
    std::fflush(stdout);
    end.Wait();
    web.reset();
    printers.Stop();
    if (!options.quiet) fmt::print(stderr, "kestrel-vprinter: ended\n");
    if (printers.HasFailed()) return tools::kOwnFault;
    return printers.HaveClientsDeparted() ? tools::kDeparted : tools::kDone;
}

tools::ExitCode Complain(tools::ExitCode code, const std::string& text) {
    fmt::print(stderr, "kestrel-vprinter: {}\n", text);
    return code;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (const auto end = ReadCommandLine(argc, argv, options)) return *end;
    try {
        return Run(options);
    } catch (const Refusal& refusal) {
        return Complain(refusal.code, refusal.text);
    } catch (const tools::UserError& error) {
        return Complain(tools::kWrongUsage, error.what());
    } catch (const std::exception& error) {
        return Complain(tools::kOwnFault, error.what());
    }
}
