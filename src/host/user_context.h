// What a program needs to run as a user: a primary token, the loaded profile and an environment.
#pragma once

#include <windows.h>

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
    [[nodiscard]] bool IsComplete() const { return environment_ != nullptr; }
    [[nodiscard]] HANDLE Token() const { return token_; }
    [[nodiscard]] void* Environment() const { return environment_; }

  private:
    void LoadProfile();

    HANDLE token_ = nullptr;
    HANDLE profile_ = nullptr;
    void* environment_ = nullptr;
};

}  // namespace host
