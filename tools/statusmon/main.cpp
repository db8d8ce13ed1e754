// The status monitor: the program that the library starts when a printer's state is to be shown, and asks to
// show its windows. This one has no windows; it says in words what it is asked for.
#include <fmt/format.h>
#include <windows.h>

#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>

#include "kwt/object_names.h"
#include "kwt/win_event.h"
#include "shared/process.h"
#include "shared/user_error.h"
#include "statusmon/instance.h"
#include "statusmon/log.h"
#include "statusmon/options.h"
#include "statusmon/platform.h"
#include "statusmon/server.h"

namespace {

using namespace statusmon;
namespace fs = std::filesystem;

constexpr uint32_t kStopPatienceMs = 10000;

/// The product's prefix comes from this program's own file name, as in every module of the product.
fs::path OwnPath() {
    WCHAR path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    if (!kwt::ObjectNameTable::Instance().Build(WideText(path, length)))
        throw tools::UserError(
            "this program's file name must end in MUI.exe after the product's prefix, such "
            "as " KESTREL_PRODUCT "MUI.exe");
    return fs::path(std::basic_string_view<WCHAR>(path, length));
}

ExitCode StopRunning(Instance& instance) {
    if (instance.Claim(0)) {
        fmt::print("no status monitor runs\n");
        return kNotRunning;
    }
    instance.AskToEnd();
    if (instance.Claim(kStopPatienceMs)) return kDone;
    fmt::print(stderr, "the status monitor does not end within {} s; end its process\n",
               kStopPatienceMs / 1000);
    return kOwnFault;
}

/// Turns what another process asks for, or the idle limit, into the user's own wish to end.
class EndWatch final {
  public:
    EndWatch(Instance& instance, const Server& server, uint32_t idleLimitMs, tools::EndRequest& end)
        : thread_([=, this, &instance, &server, &end] {
              if (Wait(instance, server, idleLimitMs)) end.Raise();
          }) {}
    EndWatch(const EndWatch&) = delete;
    EndWatch& operator=(const EndWatch&) = delete;
    ~EndWatch() {
        over_.Set();
        thread_.join();
    }

  private:
    /// False when nobody needs the watch any more.
    bool Wait(Instance& instance, const Server& server, uint32_t idleLimitMs) {
        kwt::WinEvent* const events[] = {&over_, &instance.EndEvent()};
        for (;;) {
            uint32_t timeout = INFINITE;
            if (idleLimitMs != 0) {
                const uint32_t idle = server.IdleMs();
                if (idle >= idleLimitMs) return true;
                timeout = idleLimitMs - idle;
            }
            uint32_t index = 0;
            const kwt::WaitResult result = kwt::WaitForEvents(2, events, false, index, timeout, false);
            if (result != kwt::WaitResult::TimedOut) return result != kwt::WaitResult::Signaled || index != 0;
        }
    }

    kwt::WinEvent over_;
    std::thread thread_;
};

std::string DefaultLog(const fs::path& self) {
    return HasOutput() ? "" : StateFolder() + "/" + self.stem().string() + ".log";
}

ExitCode Serve(Instance& instance, const Settings& settings, const fs::path& self) {
    tools::EndRequest end;  // before there are other threads
    if (!instance.Claim(0)) {
        fmt::print(stderr, "{} runs already; end it with --stop\n", self.stem().string());
        return kRunningAlready;
    }
    const std::string logFile = settings.logFile.empty() ? DefaultLog(self) : settings.logFile;
    Log log = logFile.empty() ? Log() : Log(logFile);
    Server server(settings, log);
    if (!server.Start()) {
        fmt::print(stderr, "the channel for requests cannot be opened (error {})\n", GetLastError());
        return kOwnFault;
    }
    instance.AnnounceRunning();
    fmt::print("ready: {}\n", self.stem().string());
    std::fflush(stdout);
    {
        const EndWatch watch(instance, server, settings.exitAfterMs, end);
        end.Wait();
    }
    server.Stop();
    return kDone;
}

ExitCode Run(int argc, char** argv) {
    const fs::path self = OwnPath();
    Options options;
    ReadSettingsFile(fs::path(self).replace_extension(".json").string(), options.settings);
    int exitCode = kDone;
    if (!ReadCommandLine(argc, argv, options, exitCode)) return static_cast<ExitCode>(exitCode);
    Instance instance(kwt::ObjectNameTable::Instance());
    return options.stop ? StopRunning(instance) : Serve(instance, options.settings, self);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const tools::UserError& error) {
        fmt::print(stderr, "status monitor: {}\n", error.what());
        return kWrongUsage;
    } catch (const std::exception& error) {
        fmt::print(stderr, "status monitor: {}\n", error.what());
        return kOwnFault;
    }
}
