// The lock file of the object folder: one descriptor for the process, one byte for everything that must be
// seen to die with its holder. Open-file-description locks: no two descriptors of a process disturb each
// other, and the kernel drops the locks when the process ends.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

#include "winport/files/descriptor.h"

namespace winport {

// Bytes of the lock file. Inode numbers are far below the tokens' range.
inline constexpr off_t kFolderByte = 0;
inline constexpr off_t kFirstTokenByte = off_t{1} << 62;

class LockFile final {
  public:
    // Opens the file in the folder. False with the last-error value set.
    bool Open(const std::string& folder);
    [[nodiscard]] bool IsOpen() const { return static_cast<bool>(file_); }
    // Drops the descriptor, and with it all locks unless another process shares it (a child after fork).
    void Close() { file_.Reset(); }

    bool TryExclusive(off_t byte) const;
    bool TryShared(off_t byte) const;
    void Unlock(off_t byte) const;
    // True when another open file description holds the byte in any mode.
    [[nodiscard]] bool IsHeldElsewhere(off_t byte) const;

  private:
    bool Set(off_t byte, short mode) const;

    Descriptor file_;
};

// The folder's lock for the length of a creation, an opening or a last close.
class FolderLock final {
  public:
    // Tries for about five seconds: a holder that is stopped must not stop everybody for ever.
    explicit FolderLock(const LockFile& file);
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    ~FolderLock();

    [[nodiscard]] explicit operator bool() const { return held_; }

  private:
    const LockFile& file_;
    bool held_;
};

}  // namespace winport
