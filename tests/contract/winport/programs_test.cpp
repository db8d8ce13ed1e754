// How programs are found, called and left alone.
#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <windows.h>
// The headers below need the one above.
#include <userenv.h>
#include <wtsapi32.h>

#include <cerrno>
#include <iterator>

#include "forked.h"
#include "handle_support.h"
#include "program.h"

namespace {

class FoundPrograms : public testing::Test {
  protected:
    void MakeProgram(const WideText& name, const std::string& body, mode_t mode = 0700) {
        folder_.WriteFile(name, body);
        ::chmod(folder_.Host(name).c_str(), mode);
    }

    // The last-error value of the start; 0 once the program has ended well.
    DWORD Run(const WideText& commandLine, DWORD flags = DETACHED_PROCESS) {
        const Program program(commandLine, nullptr, flags, folder_.Path(".").c_str());
        if (!program.Started()) return program.Error();
        EXPECT_EQ(WaitForInputIdle(program.Process(), 0), 0u);
        EXPECT_EQ(WaitForSingleObject(program.Thread(), kPatience), WAIT_OBJECT_0);
        // Nothing is left of it in the process table.
        EXPECT_EQ(::waitpid(static_cast<pid_t>(program.Id()), nullptr, WNOHANG), -1);
        EXPECT_EQ(errno, ECHILD);
        return program.ExitCode();
    }

    // What it leaves in the file "out".
    void ExpectOutput(const WideText& commandLine, const std::string& expected) {
        EXPECT_EQ(Run(commandLine), 0u);
        std::ifstream file(folder_.Host("out"));
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), expected);
    }

    TempFolder folder_;
};

Handle UserToken() {
    HANDLE token = nullptr;
    EXPECT_TRUE(WTSQueryUserToken(WTSGetActiveConsoleSessionId(), &token));
    return Handle(token);
}

TEST_F(FoundPrograms, Arguments_arrive_as_the_run_time_of_Windows_takes_them_apart) {
    MakeProgram(TEXT("show.exe"), "#!/bin/sh\nprintf '[%s]' \"$@\" > out\n");
    const WideText program = TEXT("\"") + folder_.Path("show.exe") + TEXT("\" ");
    const std::pair<const WCHAR*, const char*> rows[] = {
        {TEXT("\"abc\" d  e"), "[abc][d][e]"},
        {TEXT("a\\\\\\b d\"e f\"g h"), "[a\\\\\\b][de fg][h]"},
        {TEXT("a\\\\\\\"b c d"), "[a\\\"b][c][d]"},
        {TEXT("a\\\\\\\\\"b c\" d e"), "[a\\\\b c][d][e]"},
        {TEXT("\"\" x"), "[][x]"},
        {TEXT("\"a\"\"b\" \"c\"\""), "[a\"b][c\"]"},
        {TEXT("/f \"C:\\my drivers\\a.inf\" /m \"ZR IJ\""), "[/f][C:\\my drivers\\a.inf][/m][ZR IJ]"},
    };
    for (const auto& [arguments, expected] : rows)
        ExpectOutput(program + arguments, expected);
}

TEST_F(FoundPrograms, A_path_with_blanks_needs_no_quotes_and_the_ending_may_be_missing_or_too_much) {
    folder_.MakeFolder("my 3");
    MakeProgram(TEXT("my 3/mon itor.exe"), "#!/bin/sh\nprintf '%s' \"$#$1\" > out\n");
    MakeProgram(TEXT("my 3/plain"), "#!/bin/sh\nprintf plain > out\n");
    const WideText folder = folder_.Path("my 3");
    ExpectOutput(folder + TEXT("\\mon itor.exe a"), "1a");
    ExpectOutput(folder + TEXT("\\mon itor b"), "1b");
    ExpectOutput(folder + TEXT("/plain.EXE"), "plain");
    EXPECT_EQ(Run(TEXT("[ a = a ]")), 0u) << "a name of one letter";
}

TEST_F(FoundPrograms, A_detached_one_has_its_own_session_and_no_descriptor_of_its_starter) {
    MakeProgram(TEXT("probe"),
                "#!/bin/sh\nls /proc/$$/fd -l > open\ngrep -c -e /kestrel-test -e pipe -e /probe open > out\n"
                "[ \"$(cut -d' ' -f6 /proc/$$/stat)\" = $$ ] && echo own >> out\n"
                "[ \"$(readlink /proc/$$/fd/0)\" = /dev/null ] && echo null >> out\nexit 0\n");
    int ends[2] = {};
    ASSERT_EQ(::pipe(ends), 0);
    // The one is the script itself, which its shell reads.
    ExpectOutput(folder_.Path("probe"), "1\nown\nnull\n");
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST_F(FoundPrograms, What_cannot_be_run_is_refused_at_once) {
    MakeProgram(TEXT("locked"), "#!/bin/sh\n", 0600);
    MakeProgram(TEXT("text"), "not a program\n");
    MakeProgram(TEXT("fine"), "#!/bin/sh\nkill -9 $$\n");
    WideText line = folder_.Path("fine");
    EXPECT_EQ(Run(folder_.Path("locked")), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(Run(folder_.Path("text")), static_cast<DWORD>(ERROR_BAD_EXE_FORMAT));
    EXPECT_EQ(Run(line, 0x4), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(Run(line), 128u + 9u);

    STARTUPINFOW startup = {};
    PROCESS_INFORMATION info = {};
    const auto create = [](LPWSTR text, STARTUPINFOW* how, PROCESS_INFORMATION* program) {
        return CreateProcessW(nullptr, text, nullptr, nullptr, FALSE, 0, nullptr, nullptr, how, program);
    };
    EXPECT_REFUSED(ERROR_INVALID_PARAMETER, create(nullptr, &startup, &info));
    EXPECT_REFUSED(ERROR_INVALID_PARAMETER, create(line.data(), nullptr, &info));
    EXPECT_REFUSED(ERROR_INVALID_PARAMETER, create(line.data(), &startup, nullptr));
    WCHAR bytes[] = TEXT("A=1\0");
    EXPECT_REFUSED(ERROR_INVALID_PARAMETER, CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0,
                                                           bytes, nullptr, &startup, &info))
        << "an environment that is not said to be of wide text";
    // The last handle is for the process; there is none for its thread.
    std::vector<Handle> many;
    while (many.empty() || many.back())
        many.push_back(AutoEvent());
    many.resize(many.size() - 2);
    EXPECT_REFUSED(ERROR_TOO_MANY_OPEN_FILES, create(line.data(), &startup, &info));
    EXPECT_EQ(info.hProcess, nullptr);
    EXPECT_TRUE(AutoEvent()) << "it was not given back";
}

TEST_F(FoundPrograms, For_a_user_need_a_primary_token_with_three_rights) {
    const Handle token = UserToken();
    constexpr DWORD kRights[] = {TOKEN_QUERY, TOKEN_DUPLICATE, TOKEN_ASSIGN_PRIMARY};
    for (const DWORD missing : kRights) {
        HANDLE weak = nullptr;
        ASSERT_TRUE(DuplicateTokenEx(token, (kRights[0] | kRights[1] | kRights[2]) & ~missing, nullptr,
                                     SecurityImpersonation, TokenPrimary, &weak));
        const Handle closing(weak);
        WideText line = TEXT("[ a = a ]");
        STARTUPINFOW startup = {};
        PROCESS_INFORMATION info = {&info, &info, 1, 1};
        EXPECT_REFUSED(ERROR_ACCESS_DENIED,
                       CreateProcessAsUserW(weak, nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                            nullptr, &startup, &info));
        EXPECT_EQ(info.hProcess, nullptr);
    }
}

TEST(Accounts, A_weak_impersonation_does_not_become_a_stronger_one) {
    const struct {
        SECURITY_IMPERSONATION_LEVEL has;
        TOKEN_TYPE type;
        SECURITY_IMPERSONATION_LEVEL wanted;
        LONG error;
    } rows[] = {
        {SecurityIdentification, TokenPrimary, SecurityIdentification, ERROR_BAD_IMPERSONATION_LEVEL},
        {SecurityIdentification, TokenImpersonation, SecurityIdentification, -1},
        {SecurityImpersonation, TokenImpersonation, SecurityDelegation, ERROR_BAD_IMPERSONATION_LEVEL},
        {SecurityImpersonation, TokenPrimary, SecurityDelegation, -1}};
    for (const auto& row : rows) {
        HANDLE token = nullptr;
        ImpersonateSelf(row.has);
        EXPECT_TRUE(OpenThreadToken(GetCurrentThread(), TOKEN_ALL_ACCESS, TRUE, &token));
        RevertToSelf();
        const Handle closing(token);
        HANDLE copy = token;
        EXPECT_EQ(ErrorOf([&] { return DuplicateTokenEx(token, 0, nullptr, row.wanted, row.type, &copy); }),
                  row.error);
        EXPECT_EQ(copy != nullptr, row.error == -1);
        CloseHandle(copy);
    }
}

TEST(Accounts, Are_named_as_in_the_list_of_accounts_or_else_by_their_number) {
    const auto isNamed = [](const std::string& expected) {
        WCHAR name[64];
        DWORD size = 64;
        return GetUserNameW(name, &size) && WideText(name) == WideText(expected.begin(), expected.end());
    };
    EXPECT_TRUE(isNamed(::getpwuid(::geteuid())->pw_name));
    if (::geteuid() != 0) GTEST_SKIP() << "only root can become another account";
    EXPECT_TRUE(HoldsInChild([&] { return ::setuid(64'323) == 0 && isNamed("64323"); }));
}

TEST(Accounts, Unload_no_profile_but_their_own_and_need_a_place_for_an_environment) {
    const Handle token = UserToken();
    EXPECT_TRUE(UnloadUserProfile(token, HKEY_CURRENT_USER));
    EXPECT_REFUSED(ERROR_INVALID_HANDLE, UnloadUserProfile(token, HKEY_USERS));
    EXPECT_REFUSED(ERROR_INVALID_PARAMETER, CreateEnvironmentBlock(nullptr, token, FALSE));
}

// Nobody else runs anything as this account: it may have one process more, and a thread counts as one.
TEST_F(FoundPrograms, One_that_nobody_could_watch_is_ended_and_leaves_no_corpse) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can become another account";
    constexpr uid_t kUnused = 64'323;
    EXPECT_TRUE(HoldsInChild([] {
        const fs::directory_iterator threads("/proc/self/task");  // a sanitizer has its own
        const rlim_t most = std::distance(threads, {}) + 1;
        const rlimit limit = {most, most};
        if (::setresuid(kUnused, kUnused, kUnused) != 0 || ::setrlimit(RLIMIT_NPROC, &limit) != 0)
            return false;
        const Program program(TEXT("/bin/sleep 100"), nullptr, 0);
        const bool refused = !program.Started() && program.Error() == ERROR_NOT_ENOUGH_MEMORY;
        return refused && ::waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
    }));
}

}  // namespace
