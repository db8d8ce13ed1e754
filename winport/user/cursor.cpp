// Cursors are remembered and never shown: the library that sets them draws nothing itself.
#include <windows.h>

#include <utility>

#include "winport/threads/thread_record.h"

struct WinportCursor {
    LPCWSTR name;
};

namespace {

WinportCursor systemCursors[] = {{IDC_ARROW}, {IDC_WAIT}};

}  // namespace

HCURSOR LoadCursorW(HINSTANCE module, LPCWSTR name) {
    for (WinportCursor& cursor : systemCursors) {
        if (module == nullptr && cursor.name == name) return &cursor;
    }
    SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return nullptr;
}

HCURSOR SetCursor(HCURSOR cursor) {
    return std::exchange(winport::CurrentThread().cursor, cursor);
}
