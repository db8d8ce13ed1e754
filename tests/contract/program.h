// A program that is started and watched.
#pragma once

#include <windows.h>
// The header below needs the one above.
#include <userenv.h>

#include "support.h"

class Program final {
  public:
    // With a token: in the environment that the token's account has of itself.
    explicit Program(WideText commandLine, HANDLE token = nullptr, DWORD flags = DETACHED_PROCESS,
                     const WCHAR* folder = nullptr) {
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        SetLastError(77);
        if (token == nullptr) {
            started_ = CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, flags, nullptr,
                                      folder, &startup, &info_);
        } else {
            LPVOID environment = nullptr;
            EXPECT_TRUE(CreateEnvironmentBlock(&environment, token, FALSE));
            started_ = CreateProcessAsUserW(token, nullptr, commandLine.data(), nullptr, nullptr, FALSE,
                                            flags | CREATE_UNICODE_ENVIRONMENT, environment, folder, &startup,
                                            &info_);
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
    [[nodiscard]] DWORD Id() const { return info_.dwProcessId; }
    DWORD WaitForExitCode() const {
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(info_.hProcess, kPatience));
        return ExitCode();
    }

  private:
    PROCESS_INFORMATION info_ = {};
    BOOL started_ = FALSE;
    DWORD error_ = 0;
};
