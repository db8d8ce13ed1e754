// An event of the process's own, which the console's events and other processes set.
#include <windows.h>

// The shell's header needs the one above.
#include <shellapi.h>

#include <io.h>

#include <cstdio>
#include <memory>
#include <string>

#include "shared/process.h"
#include "shared/text.h"

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

std::vector<Explained> CommonVariables() {
    return {};
}

// The run-time's own arguments have lost what the ANSI code page cannot hold.
std::vector<std::string> Arguments(int, const char* const*) {
    struct Frees {
        void operator()(WCHAR** words) const { LocalFree(words); }
    };
    int count = 0;
    const std::unique_ptr<WCHAR*[], Frees> values(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(Utf8FromWide(values[static_cast<size_t>(i)]));
    return arguments;
}

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

bool IsTerminal(std::FILE* stream) {
    return _isatty(_fileno(stream)) != 0;
}

}  // namespace tools
