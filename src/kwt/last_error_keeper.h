// The last-error value of an operation must survive what is done after it or beside it.
#pragma once

#include <windows.h>

namespace kwt {

/// Gives the thread's last-error value back as it was when this object was made.
class LastErrorKeeper final {
  public:
    LastErrorKeeper() = default;
    ~LastErrorKeeper() { SetLastError(error_); }
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

  private:
    const DWORD error_ = GetLastError();
};

}  // namespace kwt
