#include "winport/handles/object_store.h"

#include <dirent.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <set>
#include <utility>

#include "winport/files/home.h"
#include "winport/handles/handle_table.h"
#include "winport/handles/home_page.h"
#include "winport/handles/lock_file.h"
#include "winport/handles/object_name.h"

namespace winport {

namespace {

constexpr const char* kHomePageFile = "tokens";

struct Store {
    std::recursive_mutex lock;
    LockFile lockFile;
    std::map<std::string, KernelObject*> objects;  // the named ones with open handles, by file name
    std::map<std::string, uint64_t> inodes;        // of the same
    std::set<uint32_t> ownTokens;                  // of this process's threads
    std::atomic<HomePage*> homePage{nullptr};
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
    CurrentThread().bell = 0;
    CurrentThread().heldMutexes = nullptr;
    if (!store.inodes.empty() && store.lockFile.Open(KernelObjectDirectory()))
        for (const auto& [name, inode] : store.inodes)
            store.lockFile.TryShared(static_cast<off_t>(inode));
    // Held since before the fork by a thread that has another number here and could not unlock it.
    new (&store.lock) std::recursive_mutex;
}

// Removes the file of an object that nobody uses, this process included. Under the folder lock. Without
// memory the file stays, like that of a killed process.
void RemoveIfUnused(const LockFile& locks, const std::string& fileName, uint64_t inode) {
    const auto byte = static_cast<off_t>(inode);
    struct stat status = {};
    try {
        const std::string path = ObjectPath(fileName);
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
        memory = OpenOrCreateMemory(store.lockFile, fileName, request);
    }
    if (!memory) return nullptr;
    const DWORD success = GetLastError();
    return Register(store, fileName, std::move(*memory), make, access, success);
}

// Its file lives as long as the folder. Under the store's lock; null with the last-error value.
HomePage* MapHomePage(Store& store) {
    if (!OpenStore(store)) return nullptr;
    HomePage* page = store.homePage.load(std::memory_order_relaxed);
    if (page != nullptr) return page;
    const FolderLock folder(store.lockFile);
    if (folder) page = static_cast<HomePage*>(MapSharedPage(kHomePageFile));
    store.homePage.store(page, std::memory_order_release);
    return page;
}

}  // namespace

HANDLE CreateOrOpenObject(const ObjectRequest& request, MakeObject make, uint32_t access) {
    try {
        if (request.name == nullptr || *request.name == 0) {
            auto memory = PrivateMemory(request);
            return memory ? HandleTo(make(std::move(*memory)), access, ERROR_SUCCESS) : nullptr;
        }
        const auto fileName = ObjectFileName(request.name);
        if (!fileName) return nullptr;
        ObjectRequest plain = request;
        plain.name = WithoutLocalPrefix(request.name);
        return CreateOrOpenNamed(*fileName, plain, make, access);
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

HomePage* SharedHomePage() {
    Store& store = TheStore();
    HomePage* const mapped = store.homePage.load(std::memory_order_acquire);
    if (mapped != nullptr) return mapped;
    const DWORD error = GetLastError();
    HomePage* page = nullptr;
    try {
        const std::lock_guard guard(store.lock);
        page = MapHomePage(store);
    } catch (const std::bad_alloc&) {  // then there is none
    }
    SetLastError(error);
    return page;
}

uint32_t TakeOwnerToken() {
    Store& store = TheStore();
    const std::lock_guard guard(store.lock);
    HomePage* const home = MapHomePage(store);
    if (home == nullptr) return 0;
    for (uint32_t attempt = 0; attempt < 1000; ++attempt) {
        const uint32_t token = home->lastToken.fetch_add(1, std::memory_order_relaxed) % kLastToken + 1;
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
