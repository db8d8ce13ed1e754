// Console events, and arguments that the run-time's own would lose.
#include "kestrel/platform.h"

#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <stdlib.h>
#include <windows.h>

#include <cerrno>
#include <cstdio>
#include <thread>
#include <utility>

#include "shared/text.h"

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

/// An event of this process alone.
class OwnEvent final {
  public:
    OwnEvent() : handle_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    ~OwnEvent() { CloseHandle(handle_); }
    OwnEvent(const OwnEvent&) = delete;
    OwnEvent& operator=(const OwnEvent&) = delete;

    [[nodiscard]] HANDLE Get() const { return handle_; }

  private:
    const HANDLE handle_;
};

// In use until the end, which is without unloading: a thread of the system, or one that waits for input, sets
// them.
OwnEvent& Interrupted() {
    static OwnEvent event;
    return event;
}
OwnEvent& LineEntered() {
    static OwnEvent event;
    return event;
}

BOOL WINAPI OnWaitInterrupted(DWORD) {
    SetEvent(Interrupted().Get());
    return TRUE;
}

// On a thread of the system's own.
BOOL WINAPI OnConsoleEvent(DWORD) {
    WriteAll(STD_OUTPUT_HANDLE, lastWords->out);
    WriteAll(STD_ERROR_HANDLE, lastWords->error);
    EndWithoutUnloading(lastWords->exitStatus);
}

}  // namespace

void KeepLineEnds() {
    _setmode(_fileno(stdout), _O_BINARY);
}

void EndOnInterrupt(std::string outText, std::string errorText, int exitStatus) {
    static const LastWords words{std::move(outText), std::move(errorText), exitStatus};
    lastWords = &words;
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

// A pipe cannot be waited for, so that a thread reads it; the program does not wait for that one at its end.
WaitEnd WaitForUser(std::optional<std::chrono::milliseconds> time) {
    SetConsoleCtrlHandler(OnWaitInterrupted, TRUE);
    if (!time) {
        std::thread([] {
            for (int letter = 0; letter != EOF && letter != '\n';)
                letter = std::getchar();
            SetEvent(LineEntered().Get());
        }).detach();
    }
    const HANDLE events[] = {Interrupted().Get(), LineEntered().Get()};
    const DWORD limit = time ? static_cast<DWORD>(time->count()) : INFINITE;
    const DWORD ended = WaitForMultipleObjects(2, events, FALSE, limit);
    SetConsoleCtrlHandler(OnWaitInterrupted, FALSE);
    if (ended == WAIT_OBJECT_0) return WaitEnd::Interrupt;
    return ended == WAIT_OBJECT_0 + 1 ? WaitEnd::Enter : WaitEnd::Time;
}

// Kernel objects guard themselves.
std::string OpenHomeWarning() {
    return {};
}

std::string InstalledLibrary(const std::string&) {
    return {};
}

std::filesystem::path SystemLibrary() {
    return {};
}

// The run-time joins the arguments by blanks alone: each is quoted as programs take them apart.
std::optional<int> RunProgram(const std::vector<std::string>& words, const Variables& variables) {
    const auto wide = [](const std::string& text) {
        return tools::WideFromUtf8(text).value_or(tools::WideText());
    };
    const auto quoted = [](const std::string& word) {
        std::string text = "\"";
        for (size_t i = 0, backslashes = 0; i < word.size(); ++i) {
            backslashes = word[i] == '\\' ? backslashes + 1 : 0;
            if (word[i] == '"') text += '\\';
            text += word[i];
            const bool isLast = i + 1 == word.size() || word[i + 1] == '"';
            if (isLast) text.append(backslashes, '\\');
        }
        return text + '"';
    };
    for (const auto& [name, value] : variables)
        _wputenv_s(wide(name).c_str(), wide(value).c_str());
    std::vector<tools::WideText> texts;
    for (const std::string& word : words)
        texts.push_back(wide(quoted(word)));
    std::vector<const wchar_t*> arguments;
    for (const tools::WideText& text : texts)
        arguments.push_back(text.c_str());
    arguments.push_back(nullptr);
    const intptr_t ended = _wspawnvp(_P_WAIT, wide(words[0]).c_str(), arguments.data());
    return ended < 0 && errno != 0 ? std::optional<int>() : static_cast<int>(ended);
}

void EndWithoutUnloading(int exitStatus) {
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitStatus));
    for (;;)
        Sleep(INFINITE);
}

}  // namespace cli::platform
