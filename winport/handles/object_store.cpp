#include "winport/handles/object_store.h"

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <set>
#include <utility>

#include "winport/files/descriptor.h"
#include "winport/files/error_map.h"
#include "winport/files/home.h"
#include "winport/handles/handle_table.h"
#include "winport/handles/lock_file.h"
#include "winport/handles/object_name.h"

namespace winport {

namespace {

constexpr const char* kCounterFile = "tokens";

struct Store {
    std::recursive_mutex lock;
    LockFile lockFile;
    std::map<std::string, KernelObject*> objects;   // the named ones with open handles, by file name
    std::map<std::string, uint64_t> inodes;         // of the same
    std::set<uint32_t> ownTokens;                   // of this process's threads
    std::atomic<uint32_t>* tokenCounter = nullptr;  // mapped, shared by all processes of the home
};

Store& TheStore() {
    static auto* store = new Store;
    return *store;
}

// A child shares the parent's lock-file description: it would keep the parent's locks alive. It takes locks
// of its own on the objects that it inherited; the parent lives at that moment, so they exist.
void AfterForkInChild() {
    Store& store = TheStore();
    store.lockFile.Close();
    store.ownTokens.clear();
    CurrentThread().ownerToken = 0;
    CurrentThread().heldMutexes = nullptr;
    if (!store.inodes.empty() && store.lockFile.Open(KernelObjectDirectory()))
        for (const auto& [name, inode] : store.inodes)
            store.lockFile.TryShared(static_cast<off_t>(inode));
    // Held since before the fork by a thread that has another number here and could not unlock it.
    new (&store.lock) std::recursive_mutex;
}

std::string PathOf(const std::string& fileName) {
    return KernelObjectDirectory() + '/' + fileName;
}

// Removes the file of an object that nobody uses, this process included. Under the folder lock. Without
// memory the file stays, like that of a killed process.
void RemoveIfUnused(const LockFile& locks, const std::string& fileName, uint64_t inode) {
    const auto byte = static_cast<off_t>(inode);
    struct stat status = {};
    try {
        const std::string path = PathOf(fileName);
        // The name may have been given to another file since, by a cleaner and a later creation.
        if (locks.TryExclusive(byte) && ::lstat(path.c_str(), &status) == 0 && status.st_ino == inode)
            ::unlink(path.c_str());
    } catch (const std::bad_alloc&) {
    }
    locks.Unlock(byte);
}

// What killed processes left behind would fill the folder in the long run.
void SweepFolder(const LockFile& locks) {
    const FolderLock folder(locks);
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(
        folder ? ::opendir(KernelObjectDirectory().c_str()) : nullptr, ::closedir);
    if (entries == nullptr) return;
    while (const dirent* entry = ::readdir(entries.get()))
        if (IsObjectFileName(entry->d_name)) RemoveIfUnused(locks, entry->d_name, entry->d_ino);
}

// A process that ends without closing its handles leaves no file either.
void RemoveOwnFilesAtExit() {
    Store& store = TheStore();
    const std::lock_guard guard(store.lock);
    if (store.inodes.empty()) return;
    const FolderLock folder(store.lockFile);
    if (!folder) return;
    for (const auto& [name, inode] : store.inodes)
        RemoveIfUnused(store.lockFile, name, inode);
}

void WatchProcess() {
    static const int watched =
        std::atexit(RemoveOwnFilesAtExit) +
        pthread_atfork([] { TheStore().lock.lock(); }, [] { TheStore().lock.unlock(); }, AfterForkInChild);
    static_cast<void>(watched);
}

bool OpenStore(Store& store) {
    if (store.lockFile.IsOpen()) return true;
    const std::string& folder = KernelObjectDirectory();
    if (folder.empty() || !store.lockFile.Open(folder)) return false;
    WatchProcess();
    SweepFolder(store.lockFile);
    return true;
}

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

std::optional<ObjectMemory> CreateFileObject(const LockFile& locks, const std::string& fileName,
                                             const ObjectRequest& request) {
    const std::string path = PathOf(fileName);
    const uint64_t size = WholeSize(request.dataSize);
    const auto failed = [&](int error) {
        ::unlink(path.c_str());
        SetLastError(ErrorFromErrno(error));
        return std::nullopt;
    };
    const mode_t mode = FileMode();
    const Descriptor file = OpenFile(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, mode);
    if (!file) {
        SetLastErrorFromErrno();
        return std::nullopt;
    }
    ::fchmod(file.Get(), mode);  // whatever the umask
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

// Under the folder lock. The last-error value says whether the object existed.
std::optional<ObjectMemory> OpenOrCreate(const LockFile& locks, const std::string& fileName,
                                         const ObjectRequest& request) {
    const std::string path = PathOf(fileName);
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
    if (locks.TryExclusive(inode)) {
        // Nobody lives there: the file is a killed process's.
        ::unlink(path.c_str());
        locks.Unlock(inode);
        return CreateFileObject(locks, fileName, request);
    }
    auto memory = MapExisting(locks, file, *status, fileName, request);
    if (memory) SetLastError(ERROR_ALREADY_EXISTS);
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

HANDLE HandleTo(KernelObject* object, uint32_t access, DWORD success) {
    const ObjectReference keep(object);
    HANDLE handle = OpenHandle(object, access);
    if (handle != nullptr) SetLastError(success);
    return handle;
}

HANDLE OpenKnown(KernelObject& object, const ObjectRequest& request, uint32_t access) {
    if (object.Kind() != request.kind) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return HandleTo(&object, access, ERROR_ALREADY_EXISTS);
}

// Memory or handles may run out at each step; then neither list keeps the object, which is gone.
HANDLE Register(Store& store, const std::string& fileName, ObjectMemory&& memory, MakeObject make,
                uint32_t access, DWORD success) {
    const uint64_t inode = memory.Inode();
    const auto forget = [&] {
        store.objects.erase(fileName);
        store.inodes.erase(fileName);
        const FolderLock folder(store.lockFile);
        if (folder) RemoveIfUnused(store.lockFile, fileName, inode);
    };
    try {
        store.inodes[fileName] = inode;
        KernelObject*& slot = store.objects[fileName];
        slot = make(std::move(memory));
        const HANDLE handle = HandleTo(slot, access, success);
        if (handle == nullptr) forget();
        return handle;
    } catch (...) {
        forget();
        throw;
    }
}

HANDLE CreateOrOpenNamed(const std::string& fileName, const ObjectRequest& request, MakeObject make,
                         uint32_t access) {
    Store& store = TheStore();
    const std::lock_guard guard(store.lock);
    if (const auto known = store.objects.find(fileName); known != store.objects.end())
        return OpenKnown(*known->second, request, access);
    if (!OpenStore(store)) return nullptr;
    std::optional<ObjectMemory> memory;
    {
        const FolderLock folder(store.lockFile);
        if (!folder) return nullptr;
        memory = OpenOrCreate(store.lockFile, fileName, request);
    }
    if (!memory) return nullptr;
    const DWORD success = GetLastError();
    return Register(store, fileName, std::move(*memory), make, access, success);
}

// The counter of owner tokens: one word that all processes of the home share. It lives as long as the folder.
std::atomic<uint32_t>* MapTokenCounter(const LockFile& locks) {
    const FolderLock folder(locks);
    if (!folder) return nullptr;
    const Descriptor file = OpenFile(PathOf(kCounterFile), O_RDWR | O_CREAT | O_NOFOLLOW, FileMode());
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
    return static_cast<std::atomic<uint32_t>*>(base);
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

HANDLE CreateOrOpenObject(const ObjectRequest& request, MakeObject make, uint32_t access) {
    try {
        if (request.name == nullptr || *request.name == 0) {
            auto memory = PrivateMemory(request);
            return memory ? HandleTo(make(std::move(*memory)), access, ERROR_SUCCESS) : nullptr;
        }
        const auto fileName = ObjectFileName(request.name);
        return fileName ? CreateOrOpenNamed(*fileName, request, make, access) : nullptr;
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
}

void ForgetName(KernelObject* object, const ObjectMemory& memory) {
    if (!memory.IsNamed()) return;
    Store& store = TheStore();
    const std::lock_guard guard(store.lock);
    const auto known = store.objects.find(memory.FileName());
    // Another thread may have opened the name anew since its last handle was closed.
    if (known == store.objects.end() || known->second != object || object->HasHandles()) return;
    store.objects.erase(known);
    store.inodes.erase(memory.FileName());
    const DWORD error = GetLastError();
    const FolderLock folder(store.lockFile);
    if (folder)
        RemoveIfUnused(store.lockFile, memory.FileName(), memory.Inode());
    else
        store.lockFile.Unlock(static_cast<off_t>(memory.Inode()));
    SetLastError(error);
}

uint32_t TakeOwnerToken() {
    Store& store = TheStore();
    const std::lock_guard guard(store.lock);
    if (!OpenStore(store)) return 0;
    if (store.tokenCounter == nullptr) store.tokenCounter = MapTokenCounter(store.lockFile);
    if (store.tokenCounter == nullptr) return 0;
    for (uint32_t attempt = 0; attempt < 1000; ++attempt) {
        const uint32_t token = store.tokenCounter->fetch_add(1, std::memory_order_relaxed) % kLastToken + 1;
        // After a billion threads the numbers begin anew; one that is still held is passed over.
        if (store.ownTokens.contains(token) || !store.lockFile.TryExclusive(kFirstTokenByte + token))
            continue;
        store.ownTokens.insert(token);
        return token;
    }
    SetLastError(ERROR_NO_SYSTEM_RESOURCES);
    return 0;
}

void GiveBackOwnerToken(uint32_t token) {
    Store& store = TheStore();
    const std::lock_guard guard(store.lock);
    if (store.ownTokens.erase(token) != 0) store.lockFile.Unlock(kFirstTokenByte + token);
}

bool IsOwnerAlive(uint32_t token) {
    Store& store = TheStore();
    const std::lock_guard guard(store.lock);
    return store.ownTokens.contains(token) || store.lockFile.IsHeldElsewhere(kFirstTokenByte + token);
}

}  // namespace winport
