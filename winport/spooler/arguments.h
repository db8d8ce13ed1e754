// What the spooler calls do with their arguments and results alike.
#pragma once

#include <windows.h>

namespace winport {

// A boolean call's way out: the error becomes the last-error value, also 0.
inline BOOL Report(DWORD error) {
    SetLastError(error);
    return error == ERROR_SUCCESS ? TRUE : FALSE;
}

// An optional text that is not given.
inline bool IsEmpty(LPCWSTR text) {
    return text == nullptr || text[0] == u'\0';
}

}  // namespace winport
