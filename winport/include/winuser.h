/* Cursors and the messages of threads (user/). There are no windows. Included by <windows.h>. */
#ifndef WINPORT_WINUSER_H
#define WINPORT_WINUSER_H

#include <windows.h>

#define PM_NOREMOVE 0x0
#define PM_REMOVE 0x1
#define WM_QUIT 0x12
#define WM_USER 0x400
#define MAKEINTRESOURCEW(id) ((LPWSTR)(ULONG_PTR)(WORD)(id))
#define IDC_ARROW MAKEINTRESOURCEW(32512)
#define IDC_WAIT MAKEINTRESOURCEW(32514)

typedef struct WinportWindow* HWND;
typedef struct WinportCursor* HCURSOR;

typedef struct {
    LONG x;
    LONG y;
} POINT;

typedef struct {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
} MSG, *LPMSG;

WINPORT_API HCURSOR LoadCursorW(HINSTANCE module, LPCWSTR name);
WINPORT_API HCURSOR SetCursor(HCURSOR cursor);

WINPORT_API BOOL PostThreadMessageW(DWORD threadId, UINT message, WPARAM wParam, LPARAM lParam);
WINPORT_API BOOL PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT removal);
WINPORT_API BOOL GetMessageW(LPMSG message, HWND window, UINT first, UINT last);
WINPORT_API BOOL TranslateMessage(const MSG* message);
WINPORT_API LRESULT DispatchMessageW(const MSG* message);

WINPORT_API DWORD WaitForInputIdle(HANDLE process, DWORD milliseconds);

#endif
