// Modules. A library announces its DllMain from a constructor of its own (dll_entry.cpp), so the attach
// notice is delivered however it was loaded: by LoadLibraryW, by dlopen or because a program was linked to
// it. Only LoadLibraryW can act on a refusal; elsewhere the library stays, refused, and gets no more notices.
//
// lib<stem>.so, with or without version numbers behind it, is shown as <stem>.dll in the same folder, in the
// letters by which the dynamic linker found it: a library found through a link has the link's name.
#include "winport/module/module_folders.h"

#include <dirent.h>
#include <dlfcn.h>
#include <limits.h>
#include <unistd.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cstring>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "winport/module/dll_entry.h"
#include "winport/text/utf.h"
#include "winport/threads/thread_record.h"

struct WinportModule {
    std::string path;                // of the file, as the dynamic linker knows it
    WinportDllMain entry = nullptr;  // null: a library without load notices
    void* library = nullptr;         // of dlopen; null when not loaded by LoadLibraryW
    int references = 0;              // LoadLibraryW calls not yet undone
    bool attached = false;
};

namespace winport {

namespace {

// Windows holds one lock over all load notices; a DllMain may load and free libraries under it.
std::recursive_mutex& LoaderLock() {
    static std::recursive_mutex lock;
    return lock;
}

// Never destroyed: libraries announce their end while the process exits.
std::list<WinportModule>& Modules() {
    static auto* modules = new std::list<WinportModule>;
    return *modules;
}

// Threads that begin need not take the loader lock while nobody wants notices.
std::atomic<bool> anyModule{false};

std::string FolderOf(const std::string& path) {
    const size_t end = path.rfind('/');
    return end == std::string::npos ? std::string(".") : path.substr(0, end);
}

// The folder without links and dots; the file's own name as it stands.
std::string InRealFolder(const std::string& path) {
    std::array<char, PATH_MAX> resolved;
    if (realpath(FolderOf(path).c_str(), resolved.data()) == nullptr) return path;
    return std::string(resolved.data()) + "/" + path.substr(path.rfind('/') + 1);
}

std::string PathOfCode(const void* address) {
    Dl_info info = {};
    if (dladdr(address, &info) == 0 || info.dli_fname == nullptr) return {};
    return InRealFolder(info.dli_fname);
}

std::string ProgramPath() {
    std::array<char, PATH_MAX> path;
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<size_t>(length)) : std::string();
}

// "libX.so" of "libX.so.1.0.0".
std::string_view WithoutVersion(std::string_view file) {
    for (;;) {
        const size_t digits = file.find_last_not_of("0123456789") + 1;
        if (digits < 2 || digits == file.size() || file[digits - 1] != '.') return file;
        file = file.substr(0, digits - 1);
    }
}

// "dir/libX.so" and "dir/libX.so.1" as "dir/X.dll"; anything else as it is.
std::string WindowsName(const std::string& path) {
    const size_t start = path.rfind('/') + 1;
    std::string_view file = WithoutVersion(std::string_view(path).substr(start));
    if (!file.ends_with(".so")) return path;
    file.remove_suffix(3);
    if (file.starts_with("lib")) file.remove_prefix(3);
    return path.substr(0, start) + std::string(file) + ".dll";
}

// The file behind a Windows library name: "X.dll", "X" and "dir\X.dll" are lib<X>.so; a name with another
// ending is taken as it stands.
std::string LinuxName(std::string path) {
    const size_t start = path.rfind('/') + 1;
    std::string file = path.substr(start);
    std::string ending = file.size() > 4 ? file.substr(file.size() - 4) : std::string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    if (ending == ".dll")
        file.resize(file.size() - 4);
    else if (file.find('.') != std::string::npos)
        return path;
    return path.substr(0, start) + "lib" + file + ".so";
}

constexpr uintptr_t kLargestOrdinal = 0xFFFF;

// The system libraries whose calls winport itself answers.
bool IsOwnLibrary(std::u16string_view name) {
    static constexpr std::array<std::string_view, 11> kOwn = {
        "kernel32.dll", "winspool.drv", "advapi32.dll", "psapi.dll", "user32.dll", "ole32.dll",
        "rpcrt4.dll",   "userenv.dll",  "wtsapi32.dll", "kernel32",  "advapi32"};
    std::string lower = ToUtf8(name);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return std::find(kOwn.begin(), kOwn.end(), lower) != kOwn.end();
}

WinportModule& OwnModule() {
    static auto* own = new WinportModule{PathOfCode(reinterpret_cast<const void*>(&OwnModule)), nullptr,
                                         RTLD_DEFAULT, 1, true};
    return *own;
}

WinportModule& ProgramModule() {
    static auto* program = new WinportModule{ProgramPath(), nullptr, RTLD_DEFAULT, 1, true};
    return *program;
}

// Null with the last-error value for a handle that is no module's, or one's that was freed.
WinportModule* Known(HMODULE module) {
    if (module == &OwnModule() || module == &ProgramModule()) return module;
    for (WinportModule& other : Modules())
        if (&other == module) return module;
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

WinportModule* FindByPath(const std::string& path) {
    for (WinportModule& module : Modules())
        if (module.path == path) return &module;
    return nullptr;
}

WinportModule* FindByEntry(WinportDllMain entry) {
    for (WinportModule& module : Modules())
        if (module.entry == entry) return &module;
    return nullptr;
}

void Forget(WinportModule& module) {
    Modules().remove_if([&](const WinportModule& other) { return &other == &module; });
}

void Detach(WinportModule& module, void* reserved) {
    if (!module.attached) return;
    module.attached = false;
    if (module.entry != nullptr) module.entry(&module, DLL_PROCESS_DETACH, reserved);
}

void NotifyThread(DWORD reason) {
    if (!anyModule.load(std::memory_order_acquire)) return;
    const std::lock_guard guard(LoaderLock());
    for (WinportModule& module : Modules())
        if (module.attached && module.entry != nullptr) module.entry(&module, reason, nullptr);
}

[[gnu::constructor]] void RegisterThreadNotices() {
    AtThreadStart([](ThreadRecord&) { NotifyThread(DLL_THREAD_ATTACH); });
    AtThreadEnd([](ThreadRecord&) { NotifyThread(DLL_THREAD_DETACH); });
}

}  // namespace

std::string ProgramFolder() {
    return FolderOf(ProgramPath());
}

// Whatever link led to it: what belongs to winport lies near the file itself.
std::string WinportFolder() {
    std::array<char, PATH_MAX> resolved;
    const std::string& path = OwnModule().path;
    return FolderOf(realpath(path.c_str(), resolved.data()) != nullptr ? resolved.data() : path);
}

namespace {

struct ClosesFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

// The file of that path; where there is none but versions of it ("libX.so.1"), the one of the highest number:
// who runs a program need not have what it was linked with. Empty when there is none at all.
std::string FindFile(const std::string& path) {
    if (access(path.c_str(), F_OK) == 0) return path;
    if (!path.ends_with(".so")) return {};
    const std::unique_ptr<DIR, ClosesFolder> folder(opendir(FolderOf(path).c_str()));
    const std::string start = path.substr(path.rfind('/') + 1) + ".";
    int highest = -1;
    while (const dirent* const entry = folder ? readdir(folder.get()) : nullptr) {
        const std::string_view file = entry->d_name;
        if (!file.starts_with(start)) continue;
        int version = -1;
        const char* const end = file.data() + file.size();
        const auto [rest, error] = std::from_chars(file.data() + start.size(), end, version);
        if (error == std::errc() && rest == end) highest = std::max(highest, version);
    }
    return highest < 0 ? std::string() : path + "." + std::to_string(highest);
}

// A name without a folder is looked for beside the program, then beside winport, then where the dynamic
// linker looks.
void* OpenLibrary(const std::string& name) {
    const bool hasFolder = name.find('/') != std::string::npos;
    std::string path = hasFolder ? FindFile(name) : FindFile(ProgramFolder() + "/" + name);
    if (path.empty() && !hasFolder) path = FindFile(WinportFolder() + "/" + name);
    return dlopen(path.empty() ? name.c_str() : path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

std::string PathOfLibrary(void* library) {
    struct LinkMap {  // the public head of the dynamic linker's struct link_map
        void* address;
        char* name;
    };
    LinkMap* map = nullptr;
    if (dlinfo(library, RTLD_DI_LINKMAP, &map) != 0 || map->name == nullptr) return {};
    return InRealFolder(map->name);
}

HMODULE Load(const std::string& name) {
    const std::lock_guard guard(LoaderLock());
    void* library = OpenLibrary(name);
    if (library == nullptr) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    const std::string path = PathOfLibrary(library);
    WinportModule* module = FindByPath(path);
    if (module == nullptr) module = &Modules().emplace_back(WinportModule{path, nullptr, nullptr, 0, true});
    if (!module->attached) {
        dlclose(library);  // its destructor makes winport forget the module
        SetLastError(ERROR_DLL_INIT_FAILED);
        return nullptr;
    }
    if (module->library != nullptr) dlclose(library);
    module->library = module->library != nullptr ? module->library : library;
    ++module->references;
    return module;
}

}  // namespace

}  // namespace winport

using namespace winport;

int WinportModuleLoaded(WinportDllMain entry) {
    const std::lock_guard guard(LoaderLock());
    WinportModule& module = Modules().emplace_back();
    module.path = PathOfCode(reinterpret_cast<const void*>(entry));
    module.entry = entry;
    module.attached = entry(&module, DLL_PROCESS_ATTACH, nullptr) != FALSE;
    // Windows sends the detach notice after a refused attach too.
    if (!module.attached) entry(&module, DLL_PROCESS_DETACH, nullptr);
    anyModule.store(true, std::memory_order_release);
    return module.attached;
}

void WinportModuleUnloaded(WinportDllMain entry) {
    const std::lock_guard guard(LoaderLock());
    WinportModule* module = FindByEntry(entry);
    if (module == nullptr) return;
    // Reached without FreeLibrary: the process is ending, or the host unloads the file by itself.
    Detach(*module, &LoaderLock());
    Forget(*module);
}

HMODULE LoadLibraryW(LPCWSTR fileName) {
    if (fileName == nullptr || *fileName == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (IsOwnLibrary(fileName)) return &OwnModule();
    return Load(LinuxName(ToHostPath(fileName)));
}

BOOL FreeLibrary(HMODULE module) {
    const std::lock_guard guard(LoaderLock());
    if (Known(module) == nullptr) return FALSE;
    if (module == &OwnModule() || module == &ProgramModule()) return TRUE;
    if (module->references == 0) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return FALSE;
    }
    if (--module->references > 0) return TRUE;
    void* library = module->library;
    module->library = nullptr;
    Detach(*module, nullptr);
    const bool hasEntry = module->entry != nullptr;
    if (!hasEntry) Forget(*module);
    dlclose(library);  // runs WinportModuleUnloaded, which forgets the module
    return TRUE;
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
    void* library = RTLD_DEFAULT;
    {
        const std::lock_guard guard(LoaderLock());
        if (module != nullptr && Known(module) == nullptr) return nullptr;
        if (module != nullptr && module->library != nullptr) library = module->library;
    }
    // Functions have no numbers here, which would stand in place of the name.
    const bool isName = reinterpret_cast<uintptr_t>(name) > kLargestOrdinal;
    void* address = isName ? dlsym(library, name) : nullptr;
    if (address == nullptr) SetLastError(ERROR_PROC_NOT_FOUND);
    return reinterpret_cast<FARPROC>(address);
}

HMODULE GetModuleHandleW(LPCWSTR fileName) {
    if (fileName == nullptr) return &ProgramModule();
    if (IsOwnLibrary(fileName)) return &OwnModule();
    const std::string wanted = WindowsName(LinuxName(ToHostPath(fileName)));
    const bool hasFolder = wanted.find('/') != std::string::npos;
    const std::lock_guard guard(LoaderLock());
    for (WinportModule& module : Modules()) {
        const std::string name = WindowsName(module.path);
        const bool matches = hasFolder ? name == wanted : name.substr(name.rfind('/') + 1) == wanted;
        if (matches && module.attached) return &module;
    }
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

DWORD GetModuleFileNameW(HMODULE module, LPWSTR buffer, DWORD capacity) {
    std::u16string name;
    {
        const std::lock_guard guard(LoaderLock());
        if (module == nullptr) module = &ProgramModule();
        if (Known(module) == nullptr) return 0;
        name = FromUtf8(WindowsName(module->path));
    }
    if (capacity == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    const size_t length = std::min<size_t>(name.size(), capacity - 1);
    std::memcpy(buffer, name.data(), length * sizeof(WCHAR));
    buffer[length] = 0;
    if (length < name.size()) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return capacity;
    }
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(length);
}
