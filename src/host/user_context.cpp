// The token is that of a user who is logged on; profile and environment follow from it.
#include "host/user_context.h"

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
    const kwt::UniqueHandle<CloseHandle> original(ofConsole ? TokenOfConsoleUser() : TokenOfThisProcess());
    if (!original.IsHeld()) return nullptr;
    HANDLE token = nullptr;
    return DuplicateTokenEx(original.Get(), MAXIMUM_ALLOWED, security, SecurityImpersonation, TokenPrimary,
                            &token)
               ? token
               : nullptr;
}

}  // namespace

UserContext::UserContext(SECURITY_ATTRIBUTES* security, bool ofConsole)
    : token_(PrimaryToken(security, ofConsole)) {
    if (!token_.IsHeld()) return;
    LoadProfile();
    LPVOID environment = nullptr;
    if (CreateEnvironmentBlock(&environment, token_.Get(), FALSE)) environment_.Reset(environment);
}

UserContext::~UserContext() {
    if (profile_ != nullptr) UnloadUserProfile(token_.Get(), profile_);
}

void UserContext::LoadProfile() {
    WCHAR user[MAX_PATH] = {};
    DWORD capacity = MAX_PATH;
    GetUserNameW(user, &capacity);
    PROFILEINFOW profile = {};
    profile.dwSize = sizeof(profile);
    profile.lpUserName = user;
    if (LoadUserProfileW(token_.Get(), &profile)) profile_ = profile.hProfile;
}

}  // namespace host
