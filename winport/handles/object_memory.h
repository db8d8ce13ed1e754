// The memory of an object: its file in the object folder, judged and mapped whole, or private memory.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "winport/handles/lock_file.h"
#include "winport/handles/object_page.h"

namespace winport {

// An object's file, mapped whole. Without a name: private memory of this process.
class ObjectMemory final {
  public:
    ObjectMemory() = default;
    ObjectMemory(void* base, size_t size, uint64_t inode, std::string fileName)
        : base_(base), size_(size), inode_(inode), fileName_(std::move(fileName)) {}
    ObjectMemory(ObjectMemory&& other) noexcept;
    ObjectMemory& operator=(ObjectMemory&& other) noexcept;
    ~ObjectMemory();

    [[nodiscard]] ObjectPage* Page() const { return static_cast<ObjectPage*>(base_); }
    [[nodiscard]] size_t Size() const { return size_; }
    [[nodiscard]] uint64_t Inode() const { return inode_; }
    [[nodiscard]] bool IsNamed() const { return !fileName_.empty(); }
    [[nodiscard]] const std::string& FileName() const { return fileName_; }

  private:
    void* base_ = nullptr;
    size_t size_ = 0;
    uint64_t inode_ = 0;
    std::string fileName_;
};

struct ObjectRequest {
    ObjectKind kind;
    const WCHAR* name = nullptr;  // null or empty: an unnamed object
    uint64_t dataSize = 0;        // sections
    bool manualReset = false;     // events
    bool signaled = false;        // events: initial state
    uint32_t owner = 0;           // mutexes: token of the initial owner
};

std::string ObjectPath(const std::string& fileName);

// Opens a living object's file, or makes a new object, also in place of one that a killed process left. Under
// the folder lock. The last-error value says whether the object existed; the memory's byte of the lock file
// is then held shared.
std::optional<ObjectMemory> OpenOrCreateMemory(const LockFile& locks, const std::string& fileName,
                                               const ObjectRequest& request);

// The memory of an object without a name.
std::optional<ObjectMemory> PrivateMemory(const ObjectRequest& request);

// One page of a file that all processes of the home share and nobody removes; null with the last-error value.
// Under the folder lock.
void* MapSharedPage(const std::string& fileName);

}  // namespace winport
