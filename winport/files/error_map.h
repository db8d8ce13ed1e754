// The one place where a Linux error number becomes a Windows error value.
#pragma once

#include <windows.h>

namespace winport {

// The Windows value for an errno; 0 for 0, ERROR_GEN_FAILURE for a number without a counterpart.
// Calls that report something else for the same cause on Windows (a taken file name is 80 for one call and
// 183 for another) translate that one case themselves.
DWORD ErrorFromErrno(int number);

// Sets the last-error value from errno as the failed call left it.
void SetLastErrorFromErrno();

}  // namespace winport
