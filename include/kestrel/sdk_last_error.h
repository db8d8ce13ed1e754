// The last-error value, in which a function that fails leaves its reason. For programs that do not include
// <windows.h>, and harmless to those that do. Plain C11, also valid as C++.
#pragma once

#include "sdk_types.h"

// The system's own; on Linux those of libwinport, which answers the Windows calls.
#ifdef _WIN32
KESTREL_EXTERN_C __declspec(dllimport) unsigned long __stdcall GetLastError(void);
KESTREL_EXTERN_C __declspec(dllimport) void __stdcall SetLastError(unsigned long code);
#else
/// The system's call that KestrelLastError makes.
KESTREL_API uint32_t GetLastError(void);
/// The system's call that KestrelForgetError makes.
KESTREL_API void SetLastError(uint32_t code);
#endif

/// The reason why the last function of the library that was called by this thread failed: one of the codes
/// that its documentation lists, explained in sdk_errors.h. Read it at once: calls of the system change it
/// too. Threads do not see each other's. Never fails, and does not change the value.
static inline uint32_t KestrelLastError(void) {
    return (uint32_t)GetLastError();
}

/// Forgets the reason of an earlier failure, before a call that may leave the value as it was. Never fails.
static inline void KestrelForgetError(void) {
    SetLastError(0);
}
