// Only one process at a time starts the status monitor; its display mode is a value of the registry.
#include "host/status_monitor.h"

#include <windows.h>
#include <winspool.h>

#include "host/driver_folder.h"
#include "host/process_launcher.h"
#include "host/product_config.h"
#include "kwt/object_names.h"
#include "kwt/scoped_locks.h"
#include "kwt/unique_handle.h"
#include "kwt/win_event.h"

namespace host {
namespace {

constexpr DWORD kStartPauseMs = 500;
constexpr const WCHAR* kDisplayModeValue = TEXT("AlwaysShowStatus");
constexpr DWORD kAlwaysShown = 1;

/// A spooler that is down cannot say where the status monitor is, and the wait for its answer can be long.
DWORD ProbeSpooler() {
    DWORD needed = 0;
    DWORD count = 0;
    if (EnumPrintersW(PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS, nullptr, 1, nullptr, 0, &needed, &count))
        return NO_ERROR;
    const DWORD error = GetLastError();
    return error == RPC_S_SERVER_UNAVAILABLE || error == RPC_S_CALL_FAILED_DNE ? error : NO_ERROR;
}

bool StartStatusMonitor(DWORD& error) {
    error = ProbeSpooler();
    if (error != NO_ERROR) return false;
    WideText path;
    if (!GetStatusMonitorPath(path)) {
        error = GetLastError();
        return false;
    }
    Sleep(kStartPauseMs);
    if (LaunchProcess(path, {.waitForInputIdle = true, .runAsUser = true, .showBusyCursor = false}))
        return true;
    error = GetLastError();
    return false;
}

bool StartUnlessRunning(DWORD& error) {
    const kwt::ObjectNameTable& names = kwt::ObjectNameTable::Instance();
    kwt::WinEvent running(names[kwt::ObjectName::StatusMonitorClass].c_str(), false);
    kwt::WinMutex starting(names[kwt::ObjectName::StatusMonitorStartingMutex].c_str(), false);
    if (running.IsSignaled()) return true;
    const kwt::MutexLock lock(starting, 0);
    if (lock.Result() != kwt::WaitResult::TimedOut) return StartStatusMonitor(error);
    Sleep(kStartPauseMs);
    return true;
}

WideText DisplayModeKey() {
    const CProductConfig& config = CProductConfig::Instance();
    return config.IsLoaded() ? config.GetDisplayRegDir() : WideText();
}

}  // namespace

bool EnsureStatusMonitorRunning() {
    DWORD error = NO_ERROR;
    const bool running = StartUnlessRunning(error);
    SetLastError(error);
    return running;
}

bool GetStatusMonitorPath(WideText& path) {
    path = DriverFileFolder();
    if (path.empty()) return false;
    const CProductConfig& config = CProductConfig::Instance();
    const WideText program = config.IsLoaded() ? config.GetStatusMonitorExecutable() : WideText();
    path += program;
    return !program.empty();
}

bool GetStatusMonitorDisplayMode() {
    DWORD mode = kAlwaysShown;
    kwt::UniqueHandle<RegCloseKey> key;
    if (RegOpenKeyW(HKEY_CURRENT_USER, DisplayModeKey().c_str(), key.Receive()) == ERROR_SUCCESS) {
        DWORD size = sizeof(mode);
        RegQueryValueExW(key.Get(), kDisplayModeValue, nullptr, nullptr, reinterpret_cast<BYTE*>(&mode),
                         &size);
    }
    return mode == kAlwaysShown;
}

bool SetStatusMonitorDisplayMode(int32_t mode) {
    const DWORD value = mode == 1 ? kAlwaysShown : 0;
    kwt::UniqueHandle<RegCloseKey> key;
    return RegCreateKeyW(HKEY_CURRENT_USER, DisplayModeKey().c_str(), key.Receive()) == ERROR_SUCCESS &&
           RegSetValueExW(key.Get(), kDisplayModeValue, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value),
                          sizeof(value)) == ERROR_SUCCESS;
}

}  // namespace host
