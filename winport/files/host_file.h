// Files named by Windows paths: the rules of names, and opening one for reading.
#pragma once

#include <sys/types.h>
#include <windows.h>

#include <string>
#include <string_view>

#include "winport/files/descriptor.h"

namespace winport {

// False when the path holds a character that no Windows file name may have.
bool IsWindowsFileName(std::u16string_view path);

// The Windows value for a failed look at `hostPath`: Windows tells a missing file (2) from a missing folder
// on the way (3), one errno does not.
DWORD ErrorOfPath(int number, const std::string& hostPath);

// Opens an existing regular file for reading. On failure no descriptor and `error` set: 2, 3, 123, 5 for a
// folder (or anything else that is no file) ...
Descriptor OpenForReading(std::u16string_view path, DWORD& error);

// Makes every missing folder down to `path`; those it makes get exactly `mode`, whatever the umask.
// Returns an errno, 0 when the folder is there.
int MakeFolders(const std::string& path, mode_t mode);

}  // namespace winport
