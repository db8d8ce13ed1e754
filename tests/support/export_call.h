// Functions of the library called by their names.
#pragma once

#include <kestrel/sdk.h>
#include <windows.h>

#include "catalogue/rows.h"

// What a setting's getter writes.
inline size_t OutBytes(const catalogue::Row& row) {
    switch (row.readType) {
        case catalogue::Type::Bool:
        case catalogue::Type::U8:
        case catalogue::Type::S8:
            return 1;
        case catalogue::Type::U16:
            return 2;
        case catalogue::Type::Text:
            return row.bufferBytes;
        default:
            return 4;
    }
}

template <typename... Arguments>
kestrel_bool CallExport(const char* name, Arguments... arguments) {
    static const HMODULE library = GetModuleHandleW(TEXT("ZRIJ9900SDK.dll"));
    void* const address = reinterpret_cast<void*>(GetProcAddress(library, name));
    return reinterpret_cast<kestrel_bool (*)(Arguments...)>(address)(arguments...);
}

// A number of any width is an argument of 32 bits, and a pointer is one whatever it points to.
template <typename Value>
kestrel_bool CallExport(const catalogue::Row& row, const char* function, Value value, uint32_t timeoutMs) {
    if (row.index < 0) return CallExport(function, value, timeoutMs);
    return CallExport(function, static_cast<uint32_t>(row.index), value, timeoutMs);
}
