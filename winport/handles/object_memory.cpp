#include "winport/handles/object_memory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include "winport/files/descriptor.h"
#include "winport/files/error_map.h"
#include "winport/files/home.h"
#include "winport/files/own_file.h"

namespace winport {

namespace {

// Files of a home that an administrator opened to several accounts are as open as the home.
mode_t FileMode() {
    struct stat folder = {};
    return ::stat(KernelObjectDirectory().c_str(), &folder) == 0 ? folder.st_mode & 0666 : 0600;
}

uint64_t WholeSize(uint64_t dataSize) {
    return (kPageSize + dataSize + kPageSize - 1) / kPageSize * kPageSize;
}

void InitialisePage(ObjectPage& page, const ObjectRequest& request) {
    page.magic = kPageMagic;
    page.layoutVersion = kLayoutVersion;
    page.kind = request.kind;
    page.manualReset = request.manualReset;
    page.dataSize = request.dataSize;
    page.word.store(request.signaled ? kEventSignaled : request.owner, std::memory_order_relaxed);
    page.lastOwner.store(request.owner, std::memory_order_relaxed);
    page.recursion.store(request.owner != 0 ? 1 : 0, std::memory_order_relaxed);
    if (request.name == nullptr) return;
    const std::u16string_view name = request.name;
    page.nameLength = static_cast<uint32_t>(name.size());
    std::memcpy(page.name, name.data(), name.size() * sizeof(WCHAR));
}

// Whether an open file may be used as an object: a plain file, this account's alone unless the home is
// shared.
DWORD JudgeFile(const struct stat& status) {
    if (!S_ISREG(status.st_mode) || status.st_nlink != 1) return ERROR_ACCESS_DENIED;
    const mode_t allowed = FileMode();
    if ((status.st_mode & 07777 & ~allowed) != 0) return ERROR_ACCESS_DENIED;
    if (status.st_uid != geteuid() && (allowed & 066) == 0) return ERROR_ACCESS_DENIED;
    return ERROR_SUCCESS;
}

DWORD JudgePage(const ObjectPage& page, uint64_t fileSize, const ObjectRequest& request) {
    if (page.magic != kPageMagic || page.layoutVersion != kLayoutVersion) return ERROR_FILE_CORRUPT;
    if (page.dataSize > fileSize || WholeSize(page.dataSize) != fileSize) return ERROR_FILE_CORRUPT;
    const std::u16string_view name = request.name;
    if (page.nameLength != name.size() ||
        std::memcmp(page.name, name.data(), name.size() * sizeof(WCHAR)) != 0)
        return ERROR_FILE_CORRUPT;
    return page.kind == request.kind ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

void* MapFile(const Descriptor& file, uint64_t size) {
    void* base = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0);
    return base != MAP_FAILED ? base : nullptr;
}

std::optional<ObjectMemory> MapExisting(const LockFile& locks, const Descriptor& file,
                                        const struct stat& status, const std::string& fileName,
                                        const ObjectRequest& request) {
    const auto size = static_cast<uint64_t>(status.st_size);
    if (size < kPageSize) {
        SetLastError(ERROR_FILE_CORRUPT);
        return std::nullopt;
    }
    void* base = MapFile(file, size);
    if (base == nullptr) {
        SetLastErrorFromErrno();
        return std::nullopt;
    }
    ObjectMemory memory(base, size, status.st_ino, fileName);
    if (const DWORD error = JudgePage(*memory.Page(), size, request); error != ERROR_SUCCESS) {
        SetLastError(error);
        return std::nullopt;
    }
    if (!locks.TryShared(static_cast<off_t>(status.st_ino))) {
        SetLastErrorFromErrno();
        return std::nullopt;
    }
    return memory;
}

// Makes an object of an empty file. Under the folder lock.
std::optional<ObjectMemory> FillFile(const LockFile& locks, const Descriptor& file,
                                     const std::string& fileName, const ObjectRequest& request) {
    const uint64_t size = WholeSize(request.dataSize);
    const auto failed = [&](int error) {
        ::unlink(ObjectPath(fileName).c_str());
        SetLastError(ErrorFromErrno(error));
        return std::nullopt;
    };
    // Reserved now, since a full file system would otherwise show as SIGBUS at the first touch of a page.
    if (const int error = ::posix_fallocate(file.Get(), 0, static_cast<off_t>(size)); error != 0)
        return failed(error);
    const auto status = FileStatus(file);
    if (!status || !locks.TryShared(static_cast<off_t>(status->st_ino))) return failed(errno);
    void* base = MapFile(file, size);
    if (base == nullptr) {
        const int error = errno;
        locks.Unlock(static_cast<off_t>(status->st_ino));
        return failed(error);
    }
    ObjectMemory memory(base, size, status->st_ino, fileName);
    InitialisePage(*memory.Page(), request);
    SetLastError(ERROR_SUCCESS);
    return memory;
}

std::optional<ObjectMemory> CreateFileObject(const LockFile& locks, const std::string& fileName,
                                             const ObjectRequest& request) {
    const Descriptor file = MakeOwnFile(KernelObjectDirectory(), fileName);
    if (file) return FillFile(locks, file, fileName, request);
    SetLastErrorFromErrno();
    return std::nullopt;
}

// Nobody lives in the file, which a killed process left and this one holds exclusively. In a folder with the
// sticky bit another account's file cannot be removed; it is emptied and used again.
std::optional<ObjectMemory> ReplaceDead(const LockFile& locks, const Descriptor& file, off_t inode,
                                        const std::string& fileName, const ObjectRequest& request) {
    if (::unlink(ObjectPath(fileName).c_str()) == 0 || errno == ENOENT) {
        locks.Unlock(inode);
        return CreateFileObject(locks, fileName, request);
    }
    std::optional<ObjectMemory> memory;
    if (::ftruncate(file.Get(), 0) == 0)
        memory = FillFile(locks, file, fileName, request);
    else
        SetLastErrorFromErrno();
    if (!memory) locks.Unlock(inode);
    return memory;
}

// A section's memory is mapped; an event or a mutex without a name is as small as its state.
void* AllocatePrivate(const ObjectRequest& request, size_t size) {
    if (request.kind == ObjectKind::Section) {
        void* base =
            ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        return base != MAP_FAILED ? base : nullptr;
    }
    void* base = std::aligned_alloc(alignof(ObjectPage), size);
    if (base != nullptr) std::memset(base, 0, size);
    return base;
}

}  // namespace

ObjectMemory::ObjectMemory(ObjectMemory&& other) noexcept
    : base_(other.base_), size_(other.size_), inode_(other.inode_), fileName_(std::move(other.fileName_)) {
    other.base_ = nullptr;
}

ObjectMemory& ObjectMemory::operator=(ObjectMemory&& other) noexcept {
    std::swap(base_, other.base_);
    std::swap(size_, other.size_);
    std::swap(inode_, other.inode_);
    fileName_.swap(other.fileName_);
    return *this;
}

ObjectMemory::~ObjectMemory() {
    if (base_ == nullptr) return;
    if (size_ == kUnnamedStateSize)
        std::free(base_);
    else
        ::munmap(base_, size_);
}

std::string ObjectPath(const std::string& fileName) {
    return KernelObjectDirectory() + '/' + fileName;
}

std::optional<ObjectMemory> OpenOrCreateMemory(const LockFile& locks, const std::string& fileName,
                                               const ObjectRequest& request) {
    const std::string path = ObjectPath(fileName);
    const Descriptor file = OpenFile(path, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
    if (!file) {
        if (errno == ENOENT) return CreateFileObject(locks, fileName, request);
        SetLastError(errno == ELOOP || errno == EISDIR ? ERROR_ACCESS_DENIED : ErrorFromErrno(errno));
        return std::nullopt;
    }
    const auto status = FileStatus(file);
    const DWORD error = status ? JudgeFile(*status) : ErrorFromErrno(errno);
    if (error != ERROR_SUCCESS) {
        SetLastError(error);
        return std::nullopt;
    }
    const auto inode = static_cast<off_t>(status->st_ino);
    if (locks.TryExclusive(inode)) return ReplaceDead(locks, file, inode, fileName, request);
    auto memory = MapExisting(locks, file, *status, fileName, request);
    if (memory) SetLastError(ERROR_ALREADY_EXISTS);
    return memory;
}

std::optional<ObjectMemory> PrivateMemory(const ObjectRequest& request) {
    ObjectRequest unnamed = request;
    unnamed.name = nullptr;
    const size_t size = request.kind == ObjectKind::Section ? WholeSize(request.dataSize) : kUnnamedStateSize;
    void* base = AllocatePrivate(request, size);
    if (base == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return std::nullopt;
    }
    ObjectMemory memory(base, size, 0, std::string());
    InitialisePage(*memory.Page(), unnamed);
    SetLastError(ERROR_SUCCESS);
    return memory;
}

void* MapSharedPage(const std::string& fileName) {
    const Descriptor file = OpenOrMakeOwnFile(KernelObjectDirectory(), fileName);
    const auto status = file ? FileStatus(file) : std::nullopt;
    if (!status || JudgeFile(*status) != ERROR_SUCCESS) {
        SetLastError(status ? ERROR_ACCESS_DENIED : ErrorFromErrno(errno));
        return nullptr;
    }
    if (const int error = ::posix_fallocate(file.Get(), 0, kPageSize); error != 0) {
        SetLastError(ErrorFromErrno(error));
        return nullptr;
    }
    void* base = MapFile(file, kPageSize);
    if (base == nullptr) SetLastErrorFromErrno();
    return base;
}

}  // namespace winport
