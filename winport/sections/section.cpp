// Sections on the paging file: the object's file, with the data behind its first page. A view is the object's
// own mapping, or a second one of the same pages when it is to be read only. Views keep the memory, not the
// name: that dies with the last handle.
#include <sys/mman.h>
#include <windows.h>

#include <map>
#include <mutex>

#include "winport/handles/handle_table.h"
#include "winport/handles/object_store.h"

namespace winport {

namespace {

class SectionObject final : public KernelObject {
  public:
    explicit SectionObject(ObjectMemory&& memory)
        : KernelObject(ObjectKind::Section, memory.Page()), memory_(std::move(memory)) {}
    static KernelObject* Make(ObjectMemory&& memory) { return new SectionObject(std::move(memory)); }

    [[nodiscard]] char* Data() const { return reinterpret_cast<char*>(memory_.Page()) + kPageSize; }
    // Whole pages, as Windows counts a view.
    [[nodiscard]] size_t DataSize() const { return memory_.Size() - kPageSize; }

  protected:
    void LastHandleClosed() override { ForgetName(this, memory_); }

  private:
    ObjectMemory memory_;
};

struct View {
    SectionObject* section;
    size_t size;
    DWORD protection;
    int uses;  // MapViewOfFile calls that returned this address
};

struct Views {
    std::mutex lock;
    std::map<uintptr_t, View> byAddress;

    // The view that an address lies in, or the end.
    auto Around(LPCVOID address) {
        const auto asked = reinterpret_cast<uintptr_t>(address);
        auto view = byAddress.upper_bound(asked);
        if (view == byAddress.begin() || asked >= (--view)->first + view->second.size) return byAddress.end();
        return view;
    }
};

Views& AllViews() {
    static auto* views = new Views;
    return *views;
}

// A second mapping of the same pages, without a descriptor: an old size of zero duplicates a shared mapping.
// With the object's first page, since the data need not begin where one of the kernel's does.
void* MapReadOnly(const SectionObject& section) {
    const size_t size = kPageSize + section.DataSize();
    void* copy = mremap(section.Data() - kPageSize, 0, size, MREMAP_MAYMOVE);
    if (copy == MAP_FAILED) return nullptr;
    mprotect(copy, size, PROT_READ);
    return static_cast<char*>(copy) + kPageSize;
}

void UnmapReadOnly(uintptr_t address, const View& view) {
    munmap(reinterpret_cast<void*>(address - kPageSize), kPageSize + view.size);
}

LPVOID MapView(SectionObject& section, bool writable) {
    void* address = writable ? section.Data() : MapReadOnly(section);
    if (address == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    Views& views = AllViews();
    const std::lock_guard guard(views.lock);
    View& view = views.byAddress[reinterpret_cast<uintptr_t>(address)];
    view.section = &section;
    view.size = section.DataSize();
    view.protection = writable ? PAGE_READWRITE : PAGE_READONLY;
    ++view.uses;
    section.AddReference();
    return address;
}

}  // namespace

}  // namespace winport

using namespace winport;

HANDLE CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES, DWORD protection, DWORD sizeHigh, DWORD sizeLow,
                          LPCWSTR name) {
    constexpr uint64_t kLargest = uint64_t{1} << 32;
    const uint64_t size = static_cast<uint64_t>(sizeHigh) << 32 | sizeLow;
    const bool known = protection == PAGE_READWRITE || protection == PAGE_READONLY;
    if (file != INVALID_HANDLE_VALUE || !known || size == 0 || size > kLargest) {
        SetLastError(file != INVALID_HANDLE_VALUE ? ERROR_NOT_SUPPORTED : ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    ObjectRequest request{ObjectKind::Section};
    request.name = name;
    request.dataSize = size;
    const DWORD access = protection == PAGE_READWRITE ? FILE_MAP_READ | FILE_MAP_WRITE : FILE_MAP_READ;
    return CreateOrOpenObject(request, SectionObject::Make, access);
}

LPVOID MapViewOfFile(HANDLE mapping, DWORD access, DWORD offsetHigh, DWORD offsetLow, SIZE_T size) {
    ObjectReference section;
    DWORD allowed = 0;
    {
        const UsedObject used(mapping, ObjectKind::Section);
        if (!used) return nullptr;
        section = ObjectReference(used.Get());
        allowed = used.Access();
    }
    auto& object = *static_cast<SectionObject*>(section.Get());
    const bool writable = (access & FILE_MAP_WRITE) != 0;
    const bool known =
        (access & (FILE_MAP_READ | FILE_MAP_WRITE)) != 0 && (access & ~DWORD{FILE_MAP_ALL_ACCESS}) == 0;
    if (!known || (writable && (allowed & FILE_MAP_WRITE) == 0)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    if (offsetHigh != 0 || offsetLow != 0 || size > object.DataSize()) {
        SetLastError(size > object.DataSize() ? ERROR_ACCESS_DENIED : ERROR_NOT_SUPPORTED);
        return nullptr;
    }
    return MapView(object, writable);
}

BOOL UnmapViewOfFile(LPCVOID address) {
    Views& views = AllViews();
    SectionObject* section = nullptr;
    {
        const std::lock_guard guard(views.lock);
        const auto view = views.Around(address);
        if (view == views.byAddress.end()) {
            SetLastError(ERROR_INVALID_ADDRESS);
            return FALSE;
        }
        section = view->second.section;
        if (view->second.protection == PAGE_READONLY) UnmapReadOnly(view->first, view->second);
        if (--view->second.uses == 0) views.byAddress.erase(view);
    }
    section->Release();
    return TRUE;
}

SIZE_T VirtualQuery(LPCVOID address, MEMORY_BASIC_INFORMATION* info, SIZE_T size) {
    if (info == nullptr || size < sizeof(*info)) {
        SetLastError(ERROR_BAD_LENGTH);
        return 0;
    }
    Views& views = AllViews();
    const std::lock_guard guard(views.lock);
    const auto view = views.Around(address);
    if (view == views.byAddress.end()) {
        SetLastError(ERROR_INVALID_PARAMETER);  // only views are known here
        return 0;
    }
    const uintptr_t page = reinterpret_cast<uintptr_t>(address) / kPageSize * kPageSize;
    *info = {reinterpret_cast<PVOID>(page),
             reinterpret_cast<PVOID>(view->first),
             view->second.protection,
             view->first + view->second.size - page,
             MEM_COMMIT,
             view->second.protection,
             MEM_MAPPED};
    return sizeof(*info);
}
