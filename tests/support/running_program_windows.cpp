#include <windows.h>

#include <algorithm>
#include <stdexcept>

#include "running_program.h"

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

class WindowsProgram final : public RunningProgram {
  public:
    explicit WindowsProgram(const std::vector<std::string>& commandLine) {
        Pipe in(&Pipe::write);
        Pipe out(&Pipe::read);
        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = in.read;
        startup.hStdOutput = out.write;
        startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
        std::wstring line = JoinedCommandLine(commandLine);
        const BOOL started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                            &startup, &process_);
        CloseHandle(in.read);
        CloseHandle(out.write);
        input_ = in.write;
        output_ = out.read;
        if (!started) throw std::runtime_error("cannot start " + commandLine[0]);
    }
    ~WindowsProgram() override {
        for (const HANDLE handle : {process_.hProcess, process_.hThread, input_, output_})
            CloseHandle(handle);
    }

    [[nodiscard]] unsigned Id() const override { return process_.dwProcessId; }

    [[nodiscard]] std::optional<int> ExitCode() override {
        if (WaitForSingleObject(process_.hProcess, 0) != WAIT_OBJECT_0) return std::nullopt;
        DWORD code = 0;
        GetExitCodeProcess(process_.hProcess, &code);
        return static_cast<int>(code);
    }

    void Write(const std::string& text) override {
        DWORD written = 0;
        WriteFile(input_, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    }

    // A pipe cannot be waited for.
    bool Read(std::string& text, std::chrono::milliseconds patience) override {
        const auto deadline = std::chrono::steady_clock::now() + patience;
        DWORD ready = 0;
        while (PeekNamedPipe(output_, nullptr, 0, nullptr, &ready, nullptr) && ready == 0) {
            if (std::chrono::steady_clock::now() >= deadline) return false;
            Sleep(1);
        }
        char buffer[65536];
        DWORD count = 0;
        if (!ReadFile(output_, buffer, sizeof(buffer), &count, nullptr) || count == 0) return false;
        // Text output has two bytes at the end of a line.
        std::copy_if(buffer, buffer + count, std::back_inserter(text),
                     [](char byte) { return byte != '\r'; });
        return true;
    }

    void Kill() override { TerminateProcess(process_.hProcess, kKilled); }

    // Our programs wait for an event of this name; others have no way to be asked.
    void Terminate() override {
        const std::wstring name = L"kestrel-end-" + std::to_wstring(process_.dwProcessId);
        const HANDLE event = OpenEventW(EVENT_MODIFY_STATE, FALSE, name.c_str());
        if (event == nullptr) return Kill();
        SetEvent(event);
        CloseHandle(event);
    }

    void Stop() override { CallWithProcess("NtSuspendProcess"); }
    void Continue() override { CallWithProcess("NtResumeProcess"); }

  private:
    void CallWithProcess(const char* function) const {
        using Call = LONG(NTAPI*)(HANDLE);
        const FARPROC found = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), function);
        reinterpret_cast<Call>(reinterpret_cast<void*>(found))(process_.hProcess);
    }

    PROCESS_INFORMATION process_ = {};
    HANDLE input_ = nullptr;
    HANDLE output_ = nullptr;
};

}  // namespace

std::unique_ptr<RunningProgram> RunningProgram::Start(const std::vector<std::string>& commandLine) {
    return std::make_unique<WindowsProgram>(commandLine);
}
