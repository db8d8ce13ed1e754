// What the examples share: texts of the library from and to the terminal, failures in words, and a pause.
#pragma once

#include <kestrel/sdk.h>
#include <kestrel/sdk_last_error.h>
#include <kestrel/sdk_text.h>
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#ifdef _WIN32
#include <windows.h>
#else
#include <threads.h>
#include <uchar.h>
#endif

enum { kTimeoutMs = 5000 };  // for one exchange with the printer

// The library's texts are UTF-16. `to` has room for `capacity` characters; what does not fit is cut.
static inline void ToLibrary(kestrel_char* to, size_t capacity, const char* from) {
    size_t length = 0;
#ifdef _WIN32
    length = mbstowcs(to, from, capacity - 1);
    if (length == (size_t)-1) length = 0;
#else
    mbstate_t state = {0};
    const char* const end = from + strlen(from);
    while (length + 1 < capacity) {
        // -3: the second half of a character that takes two; -1 and -2: not text in the user's code page.
        const size_t read = mbrtoc16(&to[length], from, (size_t)(end - from), &state);
        if (from == end || read == (size_t)-1 || read == (size_t)-2) break;
        if (read != (size_t)-3) from += read;
        ++length;
    }
#endif
    to[length] = 0;
}

// Prints a text of at most `capacity` characters, which need not be terminated.
static inline void PrintText(const kestrel_char* text, size_t capacity) {
#ifdef _WIN32
    printf("%.*ls", (int)capacity, text);
#else
    mbstate_t state = {0};
    for (size_t i = 0; i < capacity && text[i] != 0; ++i) {
        char bytes[16];
        const size_t count = c16rtomb(bytes, text[i], &state);
        if (count != (size_t)-1) fwrite(bytes, 1, count, stdout);
    }
#endif
}

// Says why the last call failed and what to do about it; the exit code of a program that gives up.
static inline int Explain(const char* attempt) {
    const uint32_t code = KestrelLastError();  // before any other call may change it
    const KestrelErrorText* const error = KestrelFindError(code);
    if (code == 0) {
        // The printer answered and did not comply.
        const KestrelResponseText* const response = KestrelFindResponse(GetLastResponseNum());
        fprintf(stderr, "%s: %s; %s\n", attempt, response->text, response->advice);
    } else if (error != NULL) {
        fprintf(stderr, "%s: %s; %s\n", attempt, error->text, error->advice);
    } else {
        fprintf(stderr, "%s: error %u of the system\n", attempt, (unsigned)code);
    }
    return EXIT_FAILURE;
}

// Selects the printer of that name for this thread; null takes any that belongs to the product.
static inline int Select(const char* name) {
    kestrel_char printer[260];
    setlocale(LC_ALL, "");
    if (name != NULL) ToLibrary(printer, sizeof printer / sizeof printer[0], name);
    return SelectPrinter(name != NULL ? printer : NULL);
}

static inline void PauseOneSecond(void) {
#ifdef _WIN32
    Sleep(1000);
#else
    thrd_sleep(&(struct timespec){.tv_sec = 1}, NULL);
#endif
}
