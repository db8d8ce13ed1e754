// What a program needs to run as a user: a primary token, the loaded profile and an environment.
#pragma once

#include <windows.h>

#include <userenv.h>

#include "kwt/unique_handle.h"

namespace host {

/// Belongs to one launch. The last-error value is that of the step that failed.
class UserContext final {
  public:
    /// `security` is that of the token made here. With `ofConsole` the user is that of the active console
    /// session, else the one whom the process runs as.
    UserContext(SECURITY_ATTRIBUTES* security, bool ofConsole);
    ~UserContext();
    UserContext(const UserContext&) = delete;
    UserContext& operator=(const UserContext&) = delete;

    /// A profile that could not be loaded is no reason against it.
    [[nodiscard]] bool IsComplete() const { return environment_.IsHeld(); }
    [[nodiscard]] HANDLE Token() const { return token_.Get(); }
    [[nodiscard]] void* Environment() const { return environment_.Get(); }

  private:
    void LoadProfile();

    kwt::UniqueHandle<CloseHandle> token_;
    HANDLE profile_ = nullptr;  // given back together with the token
    kwt::UniqueHandle<DestroyEnvironmentBlock> environment_;
};

}  // namespace host
