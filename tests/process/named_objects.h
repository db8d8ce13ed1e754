// Kernel objects as another program has them; closed with their last holder.
#pragma once

#include <windows.h>

#include <memory>

#include "kwt/wide_text.h"

using Handle = std::shared_ptr<void>;

inline Handle NamedEvent(const WideText& name) {
    return Handle(CreateEventW(nullptr, FALSE, FALSE, name.c_str()), CloseHandle);
}
inline Handle NamedMutex(const WideText& name, bool isTaken = false) {
    return Handle(CreateMutexW(nullptr, isTaken, name.c_str()), CloseHandle);
}
inline Handle NamedSection(const WideText& name, DWORD size) {
    return Handle(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size, name.c_str()),
                  CloseHandle);
}

inline bool IsSignaled(const Handle& object) {
    return WaitForSingleObject(object.get(), 0) == WAIT_OBJECT_0;
}
