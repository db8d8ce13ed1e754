#include "host/user_context.h"

#include <userenv.h>
#include <wtsapi32.h>

namespace host {
namespace {

HANDLE TokenOfConsoleUser() {
    HANDLE token = nullptr;
    return WTSQueryUserToken(WTSGetActiveConsoleSessionId(), &token) ? token : nullptr;
}

// A thread has a token of its own only while it impersonates somebody: here the process itself.
HANDLE TokenOfThisProcess() {
    if (!ImpersonateSelf(SecurityImpersonation)) return nullptr;
    HANDLE token = nullptr;
    const BOOL opened = OpenThreadToken(GetCurrentThread(), TOKEN_ALL_ACCESS, TRUE, &token);
    RevertToSelf();
    return opened ? token : nullptr;
}

HANDLE PrimaryToken(SECURITY_ATTRIBUTES* security, bool ofConsole) {
    const HANDLE original = ofConsole ? TokenOfConsoleUser() : TokenOfThisProcess();
    if (original == nullptr) return nullptr;
    HANDLE token = nullptr;
    const BOOL duplicated =
        DuplicateTokenEx(original, MAXIMUM_ALLOWED, security, SecurityImpersonation, TokenPrimary, &token);
    CloseHandle(original);
    return duplicated ? token : nullptr;
}

}  // namespace

UserContext::UserContext(SECURITY_ATTRIBUTES* security, bool ofConsole)
    : token_(PrimaryToken(security, ofConsole)) {
    if (token_ == nullptr) return;
    LoadProfile();
    if (!CreateEnvironmentBlock(&environment_, token_, FALSE)) environment_ = nullptr;
}

UserContext::~UserContext() {
    if (profile_ != nullptr) UnloadUserProfile(token_, profile_);
    if (environment_ != nullptr) DestroyEnvironmentBlock(environment_);
    if (token_ != nullptr) CloseHandle(token_);
}

void UserContext::LoadProfile() {
    WCHAR user[MAX_PATH] = {};
    DWORD capacity = MAX_PATH;
    GetUserNameW(user, &capacity);
    PROFILEINFOW profile = {};
    profile.dwSize = sizeof(profile);
    profile.lpUserName = user;
    if (LoadUserProfileW(token_, &profile)) profile_ = profile.hProfile;
}

}  // namespace host
