// The status monitor program: whether it runs, its start, and its display mode.
#pragma once

#include <cstdint>

#include "kwt/wide_text.h"

namespace host {

/// True when the status monitor runs, is being started by another process, or has been started now, which
/// takes a second and more. The last-error value is 0, or says why it could not be started. Any number of
/// threads and processes may call it at once: one of them starts it.
[[nodiscard]] bool EnsureStatusMonitorRunning();

/// Sets `path` to that of the program. False when the spooler does not name its folder, with its last-error
/// value, or when the configuration does not name the program; `path` then ends after the folder.
bool GetStatusMonitorPath(WideText& path);

/// Whether the status monitor's window is always shown to the current user, which is also the answer when
/// nothing is stored. Before the configuration is loaded, both use the root of the user's hive.
[[nodiscard]] bool GetStatusMonitorDisplayMode();
/// 1 stores 1, every other number 0. False when it cannot be stored.
bool SetStatusMonitorDisplayMode(int32_t mode);

}  // namespace host
