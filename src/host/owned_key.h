// A registry key for the length of one operation.
#pragma once

#include <windows.h>

namespace host {

class OwnedKey final {
  public:
    OwnedKey() = default;
    ~OwnedKey() {
        if (key_ != nullptr) RegCloseKey(key_);
    }
    OwnedKey(const OwnedKey&) = delete;
    OwnedKey& operator=(const OwnedKey&) = delete;

    /// For the call that opens it.
    [[nodiscard]] HKEY* Receive() { return &key_; }
    [[nodiscard]] HKEY Get() const { return key_; }

  private:
    HKEY key_ = nullptr;
};

}  // namespace host
