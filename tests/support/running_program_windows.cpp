#include <windows.h>

#include <algorithm>
#include <stdexcept>

#include "running_program.h"

namespace {

// As a killing signal is told elsewhere.
constexpr UINT kKilled = 128 + 9;

std::wstring Widened(const std::string& text) {
    std::wstring wide(text.size(), L'\0');
    const int units = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                                          static_cast<int>(wide.size()));
    wide.resize(static_cast<size_t>(units));
    return wide;
}

// As the run-time of the started program takes it apart again.
std::wstring Quoted(const std::wstring& argument) {
    std::wstring quoted = L"\"";
    size_t backslashes = 0;
    for (const wchar_t letter : argument) {
        if (letter == L'"') quoted.append(backslashes + 1, L'\\');
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        quoted += letter;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

std::wstring JoinedCommandLine(const std::vector<std::string>& words) {
    std::wstring line;
    for (const std::string& word : words)
        line += (line.empty() ? L"" : L" ") + Quoted(Widened(word));
    return line;
}

std::wstring MergedEnvironment(const Environment& extra) {
    std::wstring block;
    wchar_t* const own = GetEnvironmentStringsW();
    for (const wchar_t* entry = own; *entry != 0; entry += std::wstring_view(entry).size() + 1) {
        const std::wstring_view text = entry;
        const bool replaced = std::ranges::any_of(
            extra, [&](const auto& variable) { return text.starts_with(Widened(variable.first) + L'='); });
        if (!replaced) block.append(text).push_back(0);
    }
    FreeEnvironmentStringsW(own);
    for (const auto& [name, value] : extra)
        block.append(Widened(name + '=' + value)).push_back(0);
    return block + L'\0';
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
    WindowsProgram(const std::vector<std::string>& commandLine, const Environment& extra) {
        Pipe in(&Pipe::write);
        Pipe out(&Pipe::read);
        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = in.read;
        startup.hStdOutput = out.write;
        startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
        std::wstring line = JoinedCommandLine(commandLine);
        std::wstring environment = MergedEnvironment(extra);
        const BOOL started =
            CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_UNICODE_ENVIRONMENT,
                           environment.data(), nullptr, &startup, &process_);
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

std::unique_ptr<RunningProgram> RunningProgram::Start(const std::vector<std::string>& commandLine,
                                                      const Environment& extra) {
    return std::make_unique<WindowsProgram>(commandLine, extra);
}
