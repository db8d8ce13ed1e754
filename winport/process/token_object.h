// Access tokens. There is one account, that of the process: a token says what it may be used for.
#pragma once

#include <windows.h>

#include "winport/handles/kernel_object.h"

namespace winport {

class TokenObject final : public KernelObject {
  public:
    TokenObject(TOKEN_TYPE type, SECURITY_IMPERSONATION_LEVEL level)
        : KernelObject(ObjectKind::Token, nullptr), type_(type), level_(level) {}

    [[nodiscard]] TOKEN_TYPE Type() const { return type_; }
    [[nodiscard]] SECURITY_IMPERSONATION_LEVEL Level() const { return level_; }

  private:
    TOKEN_TYPE type_;
    SECURITY_IMPERSONATION_LEVEL level_;
};

// Whether the handle is a token that was opened with all of `access`; else the last-error value is 6 or 5.
bool IsTokenFor(HANDLE handle, DWORD access);

}  // namespace winport
