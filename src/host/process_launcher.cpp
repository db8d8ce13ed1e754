// Starting, and waiting for what was started.
#include "host/process_launcher.h"

#include <windows.h>

#include "host/user_context.h"
#include "kwt/open_security.h"

namespace host {
namespace {

constexpr DWORD kInputIdleMs = 30000;
constexpr DWORD kPauseWithoutIdleWaitMs = 100;
constexpr DWORD kExitCheckMs = 500;

/// The handles of a program that was started, or none.
class LaunchedProcess final {
  public:
    LaunchedProcess() = default;
    // Closes empty handles as well: their 6 is what the callers of a failed launch are promised.
    ~LaunchedProcess() {
        CloseHandle(information_.hProcess);
        CloseHandle(information_.hThread);
    }
    LaunchedProcess(const LaunchedProcess&) = delete;
    LaunchedProcess& operator=(const LaunchedProcess&) = delete;

    [[nodiscard]] PROCESS_INFORMATION* Receive() { return &information_; }
    [[nodiscard]] DWORD WaitForIdle() const { return WaitForInputIdle(information_.hProcess, kInputIdleMs); }
    [[nodiscard]] bool IsRunning() const {
        DWORD code = 0;
        return GetExitCodeThread(information_.hThread, &code) && code == STILL_ACTIVE;
    }

  private:
    PROCESS_INFORMATION information_ = {};
};

/// Shows the wait cursor for its lifetime, or does nothing.
class BusyCursor final {
  public:
    explicit BusyCursor(bool shown) : shown_(shown), busy_(LoadCursorW(nullptr, IDC_WAIT)) {
        if (shown_) previous_ = SetCursor(busy_);
    }
    ~BusyCursor() {
        if (shown_) SetCursor(previous_);
    }
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;

    /// A window that handles a message may have set its own.
    void Renew() const {
        if (shown_) SetCursor(busy_);
    }

  private:
    const bool shown_;
    const HCURSOR busy_;
    HCURSOR previous_ = nullptr;
};

void DispatchWaitingMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void WaitFor(const LaunchedProcess& process, LaunchOptions options) {
    const BusyCursor cursor(options.showBusyCursor);
    const DWORD idle = process.WaitForIdle();
    if (idle == WAIT_FAILED) Sleep(kPauseWithoutIdleWaitMs);
    if (idle != 0 || !options.waitForExit) return;
    while (process.IsRunning()) {
        cursor.Renew();
        Sleep(kExitCheckMs);
        DispatchWaitingMessages();
    }
}

STARTUPINFOW StartupOf(LaunchOptions options) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    if (options.hideWindow) {
        startup.dwFlags = STARTF_USESHOWWINDOW;
        startup.wShowWindow = SW_HIDE;
    }
    return startup;
}

// `commandLine` by value: the system may write into it.
bool Start(WideText commandLine, LaunchOptions options, SECURITY_ATTRIBUTES* security,
           PROCESS_INFORMATION* process) {
    STARTUPINFOW startup = StartupOf(options);
    if (!options.runAsUser)
        return CreateProcessW(nullptr, commandLine.data(), security, security, FALSE, DETACHED_PROCESS,
                              nullptr, nullptr, &startup, process) != FALSE;
    const UserContext user(security, options.useConsoleSession);
    return user.IsComplete() &&
           CreateProcessAsUserW(user.Token(), nullptr, commandLine.data(), security, security, FALSE,
                                DETACHED_PROCESS | CREATE_UNICODE_ENVIRONMENT, user.Environment(), nullptr,
                                &startup, process) != FALSE;
}

}  // namespace

bool LaunchProcess(const WideText& commandLine, LaunchOptions options) {
    kwt::OpenSecurity security;
    if (security.Get() == nullptr) return false;
    LaunchedProcess process;
    const bool started = Start(commandLine, options, security.Get(), process.Receive());
    if (options.waitForInputIdle || options.waitForExit) WaitFor(process, options);
    return started;
}

}  // namespace host
