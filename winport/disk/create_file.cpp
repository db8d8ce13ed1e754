#include <windows.h>

#include <memory>
#include <utility>

#include "winport/files/host_file.h"
#include "winport/handles/handle_table.h"

namespace winport {

namespace {

class FileObject final : public KernelObject {
  public:
    explicit FileObject(Descriptor file) : KernelObject(ObjectKind::File, nullptr), file_(std::move(file)) {}

  private:
    Descriptor file_;
};

HANDLE NoFile(DWORD error) {
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

}  // namespace

}  // namespace winport

using namespace winport;

// The share mode is taken and not enforced: other programs of the system would not heed it.
HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD, LPSECURITY_ATTRIBUTES, DWORD disposition, DWORD flags,
                   HANDLE templateFile) {
    if (path == nullptr) return NoFile(ERROR_PATH_NOT_FOUND);
    if (disposition != OPEN_EXISTING || templateFile != nullptr) return NoFile(ERROR_INVALID_PARAMETER);
    if (flags != 0 && flags != FILE_ATTRIBUTE_NORMAL) return NoFile(ERROR_INVALID_PARAMETER);
    if (access != GENERIC_READ) return NoFile(ERROR_ACCESS_DENIED);
    DWORD error = ERROR_SUCCESS;
    Descriptor file = OpenForReading(path, error);
    if (!file) return NoFile(error);
    // The reference keeps the object for the case that there is no room for a handle.
    const ObjectReference object(std::make_unique<FileObject>(std::move(file)).release());
    const HANDLE handle = OpenHandle(object.Get());
    if (handle == nullptr) return INVALID_HANDLE_VALUE;
    SetLastError(ERROR_SUCCESS);
    return handle;
}
