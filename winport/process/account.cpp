#include "winport/process/account.h"

#include <pwd.h>
#include <unistd.h>
#include <userenv.h>
#include <windows.h>

#include <vector>

#include "winport/process/token_object.h"
#include "winport/text/utf.h"

namespace winport {

Account CurrentAccount() {
    std::vector<char> buffer(16'384);
    passwd record = {};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &record, buffer.data(), buffer.size(), &found) != 0 || found == nullptr)
        return {std::to_string(geteuid()), "/", "/bin/sh"};
    return {found->pw_name, found->pw_dir, found->pw_shell};
}

}  // namespace winport

using namespace winport;

BOOL GetUserNameW(LPWSTR buffer, LPDWORD size) {
    if (size == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const std::u16string name = FromUtf8(CurrentAccount().name);
    const DWORD needed = static_cast<DWORD>(name.size() + 1);
    const bool fits = buffer != nullptr && *size >= needed;
    *size = needed;
    if (!fits) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    name.copy(buffer, name.size());
    buffer[name.size()] = u'\0';
    return TRUE;
}

// The account's profile is its part of the registry, which is always there.
BOOL LoadUserProfileW(HANDLE token, LPPROFILEINFOW profile) {
    if (profile == nullptr || profile->dwSize != sizeof(PROFILEINFOW) || profile->lpUserName == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (!IsTokenFor(token, TOKEN_QUERY | TOKEN_DUPLICATE | TOKEN_IMPERSONATE)) return FALSE;
    profile->hProfile = HKEY_CURRENT_USER;
    return TRUE;
}

BOOL UnloadUserProfile(HANDLE token, HANDLE profile) {
    if (!IsTokenFor(token, TOKEN_QUERY | TOKEN_DUPLICATE | TOKEN_IMPERSONATE)) return FALSE;
    if (profile == HKEY_CURRENT_USER) return TRUE;
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}
