#include <windows.h>

#include <io.h>

#include <cstdio>
#include <string>

#include "shared/process.h"

namespace tools {
namespace {

// As a killing signal is told elsewhere.
constexpr UINT kEndedAbruptly = 128 + 9;

// Named by the process, so that a program without a console can be asked to end as well.
HANDLE EndEvent() {
    static const HANDLE event = [] {
        const std::wstring name = L"kestrel-end-" + std::to_wstring(GetCurrentProcessId());
        return CreateEventW(nullptr, TRUE, FALSE, name.c_str());
    }();
    return event;
}

BOOL WINAPI OnConsoleEvent(DWORD) {
    SetEvent(EndEvent());
    return TRUE;
}

}  // namespace

EndRequest::EndRequest() {
    EndEvent();
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

void EndRequest::Wait() {
    WaitForSingleObject(EndEvent(), INFINITE);
}

void EndRequest::Raise() {
    SetEvent(EndEvent());
}

void EndAbruptly() {
    TerminateProcess(GetCurrentProcess(), kEndedAbruptly);
    for (;;)
        Sleep(INFINITE);
}

bool ErrorOutputIsTerminal() {
    return _isatty(_fileno(stderr)) != 0;
}

}  // namespace tools
