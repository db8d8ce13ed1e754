// The spooler's folder for this system's drivers, and in it that of their current version.
#include "host/driver_folder.h"

#include <windows.h>
#include <winspool.h>

namespace host {

WideText DriverFileFolder() {
    WCHAR directory[MAX_PATH] = {};
    DWORD needed = 0;
    if (!GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<BYTE*>(directory),
                                    sizeof(directory), &needed))
        return {};
    return WideText(directory) + TEXT("\\3\\");
}

}  // namespace host
