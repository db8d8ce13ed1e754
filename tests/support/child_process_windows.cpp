#include <windows.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "child_process.h"

namespace {

// As a killing signal is told elsewhere.
constexpr UINT kKilled = 128 + 9;

// No word of the tests has a quote or ends with a backslash.
std::wstring JoinedCommandLine(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words)
        line += (line.empty() ? "\"" : " \"") + word + '"';
    std::wstring wide(line.size() + 1, L'\0');
    MultiByteToWideChar(CP_UTF8, 0, line.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

struct Pipe {
    HANDLE read = nullptr;
    HANDLE write = nullptr;

    // `own` is the end that the started program must not inherit.
    explicit Pipe(HANDLE Pipe::*own) {
        SECURITY_ATTRIBUTES inheritable = {sizeof(inheritable), nullptr, TRUE};
        if (!CreatePipe(&read, &write, &inheritable, 0)) throw std::runtime_error("no pipe");
        SetHandleInformation(this->*own, HANDLE_FLAG_INHERIT, 0);
    }
};

HANDLE AsHandle(intptr_t value) {
    return reinterpret_cast<HANDLE>(value);
}
intptr_t AsNumber(HANDLE handle) {
    return reinterpret_cast<intptr_t>(handle);
}

void CallWithProcess(const char* function, HANDLE process) {
    using Call = LONG(NTAPI*)(HANDLE);
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), function);
    reinterpret_cast<Call>(reinterpret_cast<void*>(found))(process);
}

// Our programs wait for an event of this name; others have no way to be asked.
void Ask(unsigned id, HANDLE process) {
    const HANDLE event =
        OpenEventW(EVENT_MODIFY_STATE, FALSE, (L"kestrel-end-" + std::to_wstring(id)).c_str());
    if (event == nullptr) {
        TerminateProcess(process, kKilled);
        return;
    }
    SetEvent(event);
    CloseHandle(event);
}

}  // namespace

void ChildProcess::Start(std::vector<std::string> commandLine) {
    Pipe in(&Pipe::write);
    Pipe out(&Pipe::read);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = in.read;
    startup.hStdOutput = out.write;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION started = {};
    std::wstring line = JoinedCommandLine(commandLine);
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                        &started))
        throw std::runtime_error("cannot start " + commandLine[0]);
    for (const HANDLE handle : {in.read, out.write, started.hThread})
        CloseHandle(handle);
    program_ = {static_cast<unsigned>(started.dwProcessId), AsNumber(started.hProcess), AsNumber(in.write),
                AsNumber(out.read)};
}

std::optional<int> ChildProcess::ExitCode() const {
    const HANDLE process = AsHandle(program_.process);
    if (WaitForSingleObject(process, 0) != WAIT_OBJECT_0) return std::nullopt;
    DWORD code = 0;
    GetExitCodeProcess(process, &code);
    return static_cast<int>(code);
}

void ChildProcess::WriteLine(const std::string& line) {
    const std::string text = line + '\n';
    DWORD written = 0;
    WriteFile(AsHandle(program_.input), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

// A pipe cannot be waited for.
bool ChildProcess::Read(std::chrono::milliseconds patience) {
    const HANDLE output = AsHandle(program_.output);
    const auto deadline = std::chrono::steady_clock::now() + patience;
    DWORD ready = 0;
    while (PeekNamedPipe(output, nullptr, 0, nullptr, &ready, nullptr) && ready == 0) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        Sleep(1);
    }
    char buffer[65536];
    DWORD count = 0;
    if (!ReadFile(output, buffer, sizeof(buffer), &count, nullptr) || count == 0) return false;
    // Text output has two bytes at the end of a line.
    std::copy_if(buffer, buffer + count, std::back_inserter(pending_),
                 [](char byte) { return byte != '\r'; });
    return true;
}

void ChildProcess::Act(Action action) const {
    const HANDLE process = AsHandle(program_.process);
    if (action == Action::Kill) TerminateProcess(process, kKilled);
    if (action == Action::Terminate) Ask(Id(), process);
    if (action == Action::Stop) CallWithProcess("NtSuspendProcess", process);
    if (action == Action::Continue) CallWithProcess("NtResumeProcess", process);
}

void ChildProcess::Close() const {
    for (const intptr_t handle : {program_.process, program_.input, program_.output})
        CloseHandle(AsHandle(handle));
}
