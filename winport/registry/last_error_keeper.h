// Calls that report by their result leave the last-error value alone, whatever they call themselves.
#pragma once

#include <windows.h>

namespace winport {

class LastErrorKeeper final {
  public:
    LastErrorKeeper() = default;
    ~LastErrorKeeper() { SetLastError(kept_); }
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

  private:
    DWORD kept_ = GetLastError();
};

}  // namespace winport
