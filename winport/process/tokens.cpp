#include <wtsapi32.h>

#include <memory>

#include "winport/handles/handle_table.h"
#include "winport/process/token_object.h"

namespace winport {

namespace {

constexpr DWORD kConsoleSession = 1;
constexpr uintptr_t kCurrentThread = static_cast<uintptr_t>(-2);

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

BOOL OpenNewToken(TOKEN_TYPE type, SECURITY_IMPERSONATION_LEVEL level, DWORD access, LPHANDLE token) {
    // The reference keeps the object for the case that there is no room for a handle.
    const ObjectReference object(std::make_unique<TokenObject>(type, level).release());
    const bool all = (access & MAXIMUM_ALLOWED) != 0;
    *token = OpenHandle(object.Get(), all ? TOKEN_ALL_ACCESS : access);
    return *token != nullptr ? TRUE : FALSE;
}

}  // namespace

bool IsTokenFor(HANDLE handle, DWORD access) {
    const UsedObject used(handle, ObjectKind::Token);
    if (!used) return false;
    if ((used.Access() & access) == access) return true;
    SetLastError(ERROR_ACCESS_DENIED);
    return false;
}

}  // namespace winport

using namespace winport;

HANDLE GetCurrentThread() {
    return reinterpret_cast<HANDLE>(kCurrentThread);
}

BOOL ImpersonateSelf(SECURITY_IMPERSONATION_LEVEL level) {
    if (level < SecurityAnonymous || level > SecurityDelegation) return Fail(ERROR_INVALID_PARAMETER);
    CurrentThread().impersonation = level;
    return TRUE;
}

BOOL RevertToSelf() {
    CurrentThread().impersonation.reset();
    return TRUE;
}

BOOL OpenThreadToken(HANDLE thread, DWORD access, BOOL, LPHANDLE token) {
    if (token == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    *token = nullptr;
    if (thread != GetCurrentThread()) return Fail(ERROR_INVALID_HANDLE);
    const auto level = CurrentThread().impersonation;
    if (!level) return Fail(ERROR_NO_TOKEN);
    return OpenNewToken(TokenImpersonation, *level, access, token);
}

BOOL DuplicateTokenEx(HANDLE token, DWORD access, LPSECURITY_ATTRIBUTES, SECURITY_IMPERSONATION_LEVEL level,
                      TOKEN_TYPE type, LPHANDLE duplicate) {
    if (duplicate == nullptr || (type != TokenPrimary && type != TokenImpersonation))
        return Fail(ERROR_INVALID_PARAMETER);
    *duplicate = nullptr;
    if (!IsTokenFor(token, TOKEN_DUPLICATE)) return FALSE;
    DWORD kept = 0;
    {
        const UsedObject used(token, ObjectKind::Token);
        if (!used) return FALSE;
        // A weak impersonation must not become more than it is.
        const auto& original = *static_cast<const TokenObject*>(used.Get());
        const auto needed = type == TokenPrimary ? SecurityImpersonation : level;
        const bool weak = original.Type() == TokenImpersonation && original.Level() < needed;
        if (weak) return Fail(ERROR_BAD_IMPERSONATION_LEVEL);
        kept = used.Access();
    }
    return OpenNewToken(type, level, access != 0 ? access : kept, duplicate);
}

DWORD WTSGetActiveConsoleSessionId() {
    return kConsoleSession;
}

BOOL WTSQueryUserToken(ULONG sessionId, LPHANDLE token) {
    if (token == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    *token = nullptr;
    if (sessionId != kConsoleSession) return Fail(ERROR_NO_TOKEN);
    return OpenNewToken(TokenPrimary, SecurityImpersonation, TOKEN_ALL_ACCESS, token);
}
