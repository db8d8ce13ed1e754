// Programs started, watched and ended, also with the account's own token and environment.
#include <windows.h>
// The headers below need the one above.
#include <wtsapi32.h>

#include "child.h"
#include "handle_support.h"
#include "own_folder.h"

namespace {

// A primary token of the calling thread's account, as a service makes one.
Handle OwnToken() {
    EXPECT_TRUE(ImpersonateSelf(SecurityImpersonation));
    HANDLE own = nullptr;
    EXPECT_TRUE(OpenThreadToken(GetCurrentThread(), TOKEN_ALL_ACCESS, TRUE, &own));
    EXPECT_TRUE(RevertToSelf());
    const Handle first(own);
    HANDLE primary = nullptr;
    EXPECT_TRUE(
        DuplicateTokenEx(own, MAXIMUM_ALLOWED, nullptr, SecurityImpersonation, TokenPrimary, &primary));
    return Handle(primary);
}

}  // namespace

TEST(Programs, Run_to_their_exit_code_and_can_be_waited_for_among_others) {
    const WideText name = FreshName();
    const Handle event = ManualEvent(name);
    const Program program(OwnCommand(TEXT("wait ") + name));
    ASSERT_TRUE(program.Started()) << program.Error();
    EXPECT_EQ(program.ExitCode(), STILL_ACTIVE);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(program.Process(), 50));
    SetEvent(event);
    const HANDLE all[] = {program.Process(), event, program.Thread()};
    EXPECT_EQ(WAIT_OBJECT_0, WaitForMultipleObjects(3, all, TRUE, kPatience));
    EXPECT_EQ(program.ExitCode(), 3u);
}

TEST(Programs, Find_an_object_by_its_local_name_with_the_prefix_and_without) {
    const WideText plain = FreshName().substr(7);
    const WideText local = TEXT("Local\\") + plain;
    for (const auto& [mine, theirs] : {std::pair{plain, local}, {local, plain}}) {
        const Handle event = ManualEvent(mine);
        const Program program(OwnCommand(TEXT("wait ") + theirs));
        SetEvent(event);
        EXPECT_EQ(program.WaitForExitCode(), 3u);
    }
}

TEST(Programs, Can_be_ended_with_a_code) {
    const Program program(OwnCommand(TEXT("wait ") + FreshName()));
    EXPECT_TRUE(TerminateProcess(program.Process(), 4711));
    EXPECT_EQ(program.WaitForExitCode(), 4711u);
}

TEST(Programs, What_is_not_there_is_refused_with_2_and_has_no_handles) {
    for (const WCHAR* line :
         {TEXT("no_such_program_here --x"), TEXT("\"/no/such folder/x.exe\""), TEXT("")}) {
        const Program program(line);
        EXPECT_FALSE(program.Started());
        EXPECT_EQ(program.Error(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
        EXPECT_EQ(program.Process(), nullptr);
    }
    DWORD code = 0;
    EXPECT_REFUSED(ERROR_INVALID_HANDLE, WaitForInputIdle(nullptr, 10) != WAIT_FAILED);
    EXPECT_REFUSED(ERROR_INVALID_HANDLE, GetExitCodeThread(nullptr, &code));
}

TEST(Programs, Started_as_the_user_see_the_users_environment_instead_of_the_callers) {
    SetVariable("KESTREL_CONTRACT_OWN", "1");
    const WideText ask = OwnCommand(TEXT("has KESTREL_CONTRACT_OWN"));
    EXPECT_EQ(Program(ask).WaitForExitCode(), 1u);
    const Handle token = OwnToken();
    EXPECT_EQ(Program(ask, token).WaitForExitCode(), 0u);
    EXPECT_EQ(Program(OwnCommand(TEXT("has PATH")), token).WaitForExitCode(), 1u);
    HANDLE console = nullptr;
    ASSERT_TRUE(WTSQueryUserToken(WTSGetActiveConsoleSessionId(), &console));
    const Handle closing(console);
}

TEST(Accounts, A_thread_has_a_token_only_while_it_impersonates) {
    HANDLE token = nullptr;
    EXPECT_REFUSED(ERROR_NO_TOKEN, OpenThreadToken(GetCurrentThread(), TOKEN_ALL_ACCESS, TRUE, &token));
    const Handle own = OwnToken();
    EXPECT_FALSE(OpenThreadToken(GetCurrentThread(), TOKEN_ALL_ACCESS, TRUE, &token));
    WCHAR user[260];
    DWORD size = 260;
    ASSERT_TRUE(GetUserNameW(user, &size));
    EXPECT_EQ(size, WideText(user).size() + 1);
    size = 1;
    EXPECT_REFUSED(ERROR_INSUFFICIENT_BUFFER, GetUserNameW(user, &size));
    PROFILEINFOW profile = {};
    profile.dwSize = sizeof profile;
    profile.lpUserName = user;
    EXPECT_TRUE(LoadUserProfileW(own, &profile));
    EXPECT_NE(profile.hProfile, nullptr);
    UnloadUserProfile(own, profile.hProfile);
}
