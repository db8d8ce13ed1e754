// The files of winport's own folders, which several accounts may share: a file is as open to others as the
// folder it lies in, whatever the umask of the process that made it, and nobody finds one that is not so yet.
#pragma once

#include <string>

#include "winport/files/descriptor.h"

namespace winport {

// A folder in which one process at a time makes files.
class HeldFolder final {
  public:
    // Tries for about five seconds. On failure errno says why, EBUSY when another process holds it.
    explicit HeldFolder(const std::string& folder);
    HeldFolder(const HeldFolder&) = delete;
    HeldFolder& operator=(const HeldFolder&) = delete;
    ~HeldFolder();

    [[nodiscard]] explicit operator bool() const { return static_cast<bool>(held_); }

  private:
    Descriptor held_;
};

// Makes a file that is not there, under a lock of the caller's. errno EEXIST when it is.
[[nodiscard]] Descriptor MakeOwnFile(const std::string& folder, const std::string& name);

// Opens a plain file for reading and writing, no link; one that is missing is made, under the caller's lock.
[[nodiscard]] Descriptor OpenOrMakeOwnFile(const std::string& folder, const std::string& name);

}  // namespace winport
