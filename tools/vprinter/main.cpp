// kestrel-vprinter: printers that exist in this process only, answering on the channels of a language
// monitor.
#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <exception>
#include <fstream>
#include <future>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "shared/process.h"
#include "shared/user_error.h"
#include "vprinter/device/condition.h"
#include "vprinter/files/control_file.h"
#include "vprinter/service/options.h"
#include "vprinter/service/server.h"

namespace {

using namespace vprinter;

constexpr std::string_view kUsbPort = "USB";

/// Ends the program with an exit code of its own.
struct Refusal {
    ExitCode code;
    std::string text;
};

std::string ReadWhole(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file) throw tools::UserError(path + " cannot be read; check the name and its permissions");
    return text.str();
}

FaultScript LoadFaults(const Options& options) {
    if (options.faultsFile.empty()) return {};
    FaultScript script = FaultScript::Parse(ReadWhole(options.faultsFile), options.faultsFile);
    for (const std::string& port : script.PrintersNamed()) {
        if (std::find(options.ports.begin(), options.ports.end(), port) == options.ports.end()) {
            throw tools::UserError(fmt::format(
                "{} has a rule for printer {}, which is not served; add --port {} or correct the rule",
                options.faultsFile, port, port));
        }
    }
    return script;
}

DeviceModel MakeModel(const Options& options, const std::string& port, const StateFile* state) {
    DeviceModel model;
    if (!options.modelName.empty()) {
        const std::string problem = model.SetInitial(opl::KeyText(opl::Key::FriendlyName), options.modelName);
        if (!problem.empty()) throw tools::UserError("--model-name: " + problem);
    }
    if (!port.starts_with(kUsbPort)) static_cast<void>(model.SetInitial(condition::kConnection, "Network"));
    if (state != nullptr) state->Restore(port, model);
    const std::string problem = ControlFile(options.controlFile, port).Apply(model);
    if (!problem.empty()) throw tools::UserError(problem);
    return model;
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
        const FaultScript faults = LoadFaults(options);
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
        if (!all) throw Refusal{kOwnFault, "not every printer could be started"};
    }

    void Stop() {
        for (PrinterServer& server : servers_)
            server.Stop();
    }

    [[nodiscard]] bool HasFailed() const {
        return std::any_of(servers_.begin(), servers_.end(),
                           [](const PrinterServer& server) { return server.HasFailed(); });
    }

  private:
    void Add(const std::string& port, const FaultScript& faults) {
        const WideText channelName = ChannelName(options_.product, port);
        if (channelName.empty()) {
            throw tools::UserError("--product " + options_.product +
                                   " makes no channel name; expected a prefix such as " KESTREL_PRODUCT);
        }
        if (!claims_.emplace_back(channelName).Take()) {
            throw Refusal{
                kServedAlready,
                fmt::format("printer {} of product {} is served by another virtual printer that is still "
                            "running; end that one or choose another --port",
                            port, options_.product)};
        }
        StateFile* const state = state_ ? &*state_ : nullptr;
        servers_.emplace_back(
            port, channelName, MakeModel(options_, port, state), faults.For(port),
            PrinterServer::Shared{trace_, state, options_.controlFile, [this] { end_.Raise(); }});
    }

    const Options& options_;
    Trace trace_;
    tools::EndRequest& end_;
    std::optional<StateFile> state_;
    std::deque<PrinterClaim> claims_;  // outlive the servers: nobody else starts before they have ended
    std::deque<PrinterServer> servers_;
};

ExitCode Run(const Options& options) {
    tools::EndRequest end;
    Printers printers(options, end);
    printers.Start();
    fmt::print("ready: {}\n", fmt::join(options.ports, " "));
    std::fflush(stdout);
    end.Wait();
    printers.Stop();
    if (!options.quiet) fmt::print(stderr, "kestrel-vprinter: ended\n");
    return printers.HasFailed() ? kOwnFault : kDone;
}

ExitCode Complain(ExitCode code, const std::string& text) {
    fmt::print(stderr, "kestrel-vprinter: {}\n", text);
    return code;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    int exitCode = kDone;
    if (!ReadCommandLine(argc, argv, options, exitCode)) return exitCode;
    try {
        return Run(options);
    } catch (const Refusal& refusal) {
        return Complain(refusal.code, refusal.text);
    } catch (const tools::UserError& error) {
        return Complain(kWrongUsage, error.what());
    } catch (const std::exception& error) {
        return Complain(kOwnFault, error.what());
    }
}
