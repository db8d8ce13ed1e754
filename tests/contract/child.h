// The test program started by its own tests: "--child exit 7", "--child has VARIABLE", "--child wait EVENT",
// "--child take MUTEX".
#pragma once

#include <gtest/gtest.h>
#include <windows.h>
// The header below needs the one above.
#include <userenv.h>

#include <optional>

#include "support.h"

// The exit code of such a run; nothing when it is none. "has" gives 1 or 0; "wait" 3 once the event is set,
// "take" 3 once it has the mutex. That one sets the event "<mutex>Opened" before it waits.
std::optional<int> RunAsChild(int argc, char** argv);

inline constexpr DWORD kPatience = 10'000;

inline WideText OwnCommand(const WideText& arguments) {
    WCHAR path[1024];
    GetModuleFileNameW(nullptr, path, 1024);
    return TEXT("\"") + WideText(path) + TEXT("\" --child ") + arguments;
}

class Program final {
  public:
    // With a token: in the environment that the token's account has of itself.
    explicit Program(WideText commandLine, HANDLE token = nullptr) {
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        SetLastError(77);
        if (token == nullptr) {
            started_ = CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS,
                                      nullptr, nullptr, &startup, &info_);
        } else {
            LPVOID environment = nullptr;
            EXPECT_TRUE(CreateEnvironmentBlock(&environment, token, FALSE));
            started_ = CreateProcessAsUserW(token, nullptr, commandLine.data(), nullptr, nullptr, FALSE,
                                            DETACHED_PROCESS | CREATE_UNICODE_ENVIRONMENT, environment,
                                            nullptr, &startup, &info_);
            DestroyEnvironmentBlock(environment);
        }
        error_ = GetLastError();
    }
    ~Program() {
        if (info_.hProcess != nullptr) CloseHandle(info_.hProcess);
        if (info_.hThread != nullptr) CloseHandle(info_.hThread);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    [[nodiscard]] bool Started() const { return started_ != FALSE; }
    [[nodiscard]] DWORD Error() const { return error_; }
    [[nodiscard]] HANDLE Process() const { return info_.hProcess; }
    [[nodiscard]] HANDLE Thread() const { return info_.hThread; }
    [[nodiscard]] DWORD ExitCode() const {
        DWORD code = 77;
        DWORD threadCode = 78;
        EXPECT_TRUE(GetExitCodeProcess(info_.hProcess, &code));
        EXPECT_TRUE(GetExitCodeThread(info_.hThread, &threadCode));
        EXPECT_EQ(code, threadCode);
        return code;
    }
    DWORD WaitForExitCode() const {
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(info_.hProcess, kPatience));
        return ExitCode();
    }

  private:
    PROCESS_INFORMATION info_ = {};
    BOOL started_ = FALSE;
    DWORD error_ = 0;
};
