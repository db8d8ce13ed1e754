#include "platform.h"

#include <windows.h>
// The shell's header needs the one above.
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <utility>

#include "text.h"

namespace cli::platform {
namespace {

// Complete before the handler is installed, never changed and never destroyed.
struct LastWords {
    std::string out;
    std::string error;
    int exitStatus;
};
const LastWords* lastWords = nullptr;

void WriteAll(DWORD stream, const std::string& text) {
    DWORD written = 0;
    WriteFile(GetStdHandle(stream), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

// On a thread of the system's own.
BOOL WINAPI OnConsoleEvent(DWORD) {
    WriteAll(STD_OUTPUT_HANDLE, lastWords->out);
    WriteAll(STD_ERROR_HANDLE, lastWords->error);
    EndWithoutUnloading(lastWords->exitStatus);
}

}  // namespace

// The run-time's own arguments have lost what the ANSI code page cannot hold.
std::vector<std::string> Arguments(int, char**) {
    int count = 0;
    WCHAR** const values = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(Utf8FromWide(values[i]));
    LocalFree(values);
    return arguments;
}

bool IsTerminal(Stream stream) {
    return _isatty(_fileno(stream == Stream::kOut ? stdout : stderr)) != 0;
}

void EndOnInterrupt(std::string outText, std::string errorText, int exitStatus) {
    static const LastWords words{std::move(outText), std::move(errorText), exitStatus};
    lastWords = &words;
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

void EndWithoutUnloading(int exitStatus) {
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitStatus));
    for (;;)
        Sleep(INFINITE);
}

}  // namespace cli::platform
