// Error codes and response numbers in words: what happened, and what to do about it. Header only: it adds no
// function to the library and needs none of it. Plain C11, also valid as C++.
//
// All functions here may be called from any thread at any time; what they return is constant and lives as
// long as the program. Texts are English ASCII, zero-terminated, without a full stop.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "sdk_errors.h"

/// An error code in words. No text is null or empty.
typedef struct KestrelErrorText {
    uint32_t code;       ///< the last-error value
    const char* name;    ///< as sdk_errors.h or the system calls it: "SDK_ERROR_NO_REPLY"
    const char* text;    ///< what happened: "no reply came in time"
    const char* advice;  ///< what to do about it
} KestrelErrorText;

/// A response number in words. No text is null or empty.
typedef struct KestrelResponseText {
    uint32_t first;      ///< the lowest number of this meaning
    uint32_t last;       ///< the highest one
    uint32_t error;      ///< the last-error value that it stands for; 0 for a good one
    const char* name;    ///< a short name: "RESPONSE_BUSY"
    const char* text;    ///< what it means
    const char* advice;  ///< what to do about it
} KestrelResponseText;

/// Codes that no function of the library leaves, but that its callers meet: from loading the library, and
/// from the spooler when they manage printers.
/// `ROW`: as for KESTREL_SDK_ERRORS.
#define KESTREL_CALLER_ERRORS(ROW)                                                              \
    ROW("ERROR_MOD_NOT_FOUND", 126u, "the library file, or one that it needs, is not there",    \
        "install the product again, or check the path that was given")                          \
    ROW("ERROR_PROC_NOT_FOUND", 127u, "the library has no function of this name",               \
        "install the version of the library that the program was made for")                     \
    ROW("ERROR_BAD_EXE_FORMAT", 193u, "the library file is not one that this program can load", \
        "use the library of the program's own word size")                                       \
    ROW("ERROR_UNKNOWN_PRINTER_DRIVER", 1797u, "the driver is not installed",                   \
        "install the driver of the product first")                                              \
    ROW("ERROR_PRINTER_ALREADY_EXISTS", 1802u, "a printer of this name is installed already",   \
        "choose another name, or remove that printer first")

/// The words of an error code.
///
/// `code`: a last-error value.
///
/// Returns null when it is neither in sdk_errors.h nor among the codes above: it is then one of the system's
/// own, passed on unchanged.
static inline const KestrelErrorText* KestrelFindError(uint32_t code) {
#define KESTREL_ERROR_ROW(name, code, text, advice) {code, name, text, advice},
    static const KestrelErrorText errors[] = {KESTREL_SDK_ERRORS(KESTREL_ERROR_ROW)
                                                  KESTREL_CALLER_ERRORS(KESTREL_ERROR_ROW)};
#undef KESTREL_ERROR_ROW
    for (size_t i = 0; i < sizeof errors / sizeof errors[0]; ++i) {
        if (errors[i].code == code) return &errors[i];
    }
    return NULL;
}

/// The words of a response number, as GetLastResponseNum returns it.
///
/// `number`: any number.
///
/// Never returns null: a number that the library knows nothing of is a failure like any other.
static inline const KestrelResponseText* KestrelFindResponse(uint32_t number) {
#define KESTREL_RESPONSE_ROW(first, last, error, name, text, advice) {first, last, error, name, text, advice},
    static const KestrelResponseText responses[] = {KESTREL_SDK_RESPONSES(KESTREL_RESPONSE_ROW)};
#undef KESTREL_RESPONSE_ROW
    const size_t count = sizeof responses / sizeof responses[0];
    size_t i = 0;
    while (i + 1 < count && (number < responses[i].first || number > responses[i].last))
        ++i;
    return &responses[i];
}
