// wine_exchanges         what GetFaxRedials takes against the virtual printer, and what the same bytes take
// there and
//                        back through a named pipe, by turns: lines of JSON. The printer is installed already
// wine_exchanges NAME    the other end of the pipe of that name
#include <kestrel/sdk.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr uint32_t kTimeoutMs = 5000;
constexpr ULONGLONG kPatienceMs = 30'000;  // until a counterpart can be asked
constexpr uint8_t kRedials = 3;
constexpr int kTurns = 300;
constexpr int kExchangesOfTurn = 20;
constexpr std::string_view kRequest = "DeviceSettings.Fax.Redials?";
constexpr std::string_view kReply = "0000,DeviceSettings.Fax.Redials=3;";

void Require(bool condition, const char* what) {
    if (!condition) throw std::runtime_error(std::string(what) + ", error " + std::to_string(GetLastError()));
}

// A program without output of its own, which ends with its scope.
class Program final {
  public:
    explicit Program(std::wstring commandLine) {
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        Require(CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS,
                               nullptr, nullptr, &startup, &info_) != 0,
                "a counterpart cannot be started");
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        TerminateProcess(info_.hProcess, 1);
        WaitForSingleObject(info_.hProcess, INFINITE);
        CloseHandle(info_.hThread);
        CloseHandle(info_.hProcess);
    }

  private:
    PROCESS_INFORMATION info_{};
};

class Pipe final {
  public:
    explicit Pipe(HANDLE handle) : handle_(handle) { Require(handle_ != INVALID_HANDLE_VALUE, "no pipe"); }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() { CloseHandle(handle_); }

    static HANDLE Create(const std::wstring& name) {
        constexpr DWORD kBuffer = 4096;
        return CreateNamedPipeW(name.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE | PIPE_WAIT, 1, kBuffer,
                                kBuffer, 0, nullptr);
    }
    static HANDLE Open(const std::wstring& name) {
        return CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    }

    void AwaitClient() {
        Require(ConnectNamedPipe(handle_, nullptr) || GetLastError() == ERROR_PIPE_CONNECTED, "no client");
    }

    [[nodiscard]] bool Write(std::string_view bytes) {
        DWORD written = 0;
        return WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != 0 &&
               written == bytes.size();
    }

    // That so many bytes come, and that they are these.
    [[nodiscard]] bool Read(std::string_view expected) {
        char bytes[64];
        DWORD all = 0;
        for (DWORD part = 0; all < expected.size(); all += part)
            if (!ReadFile(handle_, bytes + all, static_cast<DWORD>(expected.size()) - all, &part, nullptr) ||
                part == 0)
                return false;
        return expected == std::string_view(bytes, all);
    }

  private:
    HANDLE handle_;
};

void Serve(const std::wstring& name) {
    Pipe pipe(Pipe::Open(name));
    while (pipe.Read(kRequest) && pipe.Write(kReply)) {
    }
}

void AskPrinter() {
    uint8_t redials = 0;
    Require(GetFaxRedials(&redials, kTimeoutMs) && redials == kRedials, "a wrong answer of the printer");
}

void AwaitPrinter() {
    const ULONGLONG end = GetTickCount64() + kPatienceMs;
    while (!SelectPrinter(L"Bench") || !SetFaxRedials(kRedials, kTimeoutMs)) {
        Require(GetTickCount64() < end, "the printer does not answer");
        Sleep(100);
    }
}

double NowUs() {
    LARGE_INTEGER now;
    LARGE_INTEGER frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(now.QuadPart) * 1e6 / static_cast<double>(frequency.QuadPart);
}

// The first exchange wakes the counterpart and is not counted.
template <typename Exchange>
double TurnUs(const Exchange& exchange) {
    exchange();
    const double begin = NowUs();
    for (int i = 0; i < kExchangesOfTurn; ++i)
        exchange();
    return (NowUs() - begin) / kExchangesOfTurn;
}

void Tell(const char* name, std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    std::printf("{\"check\": \"%s\", \"value\": %.3f}\n", name, *middle);
}

void Measure() {
    const std::wstring name = L"\\\\.\\pipe\\kestrel-bench-" + std::to_wstring(GetCurrentProcessId());
    wchar_t own[MAX_PATH];
    Require(GetModuleFileNameW(nullptr, own, MAX_PATH) != 0, "no name");
    const std::wstring folder(own, std::wstring_view(own).rfind(L'\\') + 1);

    const Program printer(L'"' + folder + L"kestrel-vprinter.exe\" --port USB001 --trace none");
    Pipe pipe(Pipe::Create(name));
    const Program server(L'"' + std::wstring(own) + L"\" " + name);
    pipe.AwaitClient();
    AwaitPrinter();
    const auto askPipe = [&pipe] {
        Require(pipe.Write(kRequest) && pipe.Read(kReply), "a wrong answer of the pipe");
    };

    std::vector<double> library;
    std::vector<double> pipes;
    for (int i = 0; i < kTurns; ++i) {
        library.push_back(TurnUs(AskPrinter));
        pipes.push_back(TurnUs(askPipe));
    }
    Tell("GetFaxRedials under Wine, us", std::move(library));
    Tell("named pipe under Wine, us", std::move(pipes));
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    try {
        if (argc == 2)
            Serve(argv[1]);
        else
            Measure();
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "wine_exchanges: %s\n", failure.what());
        return 1;
    }
}
