/* Preloaded into the programs of a test run: notes each error that an exported function leaves, once a
   process, as a line such as "SelectPrinter 1801 process_tests", where "unchanged" stands for a last-error
   value that the function left alone. A library that a program loads by itself is reached through
   GetProcAddress. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <kestrel/sdk.h>
#include <stdio.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

/* Weak: programs without the library are preloaded too. */
__attribute__((weak)) uint32_t GetLastError(void);
__attribute__((weak)) void SetLastError(uint32_t error);

typedef void (*AnyFunction)(void);
enum { kMostErrors = 32, kUntouched = 0x2E5EED };

struct Export {
    const char* name;
    AnyFunction wrapper;
    AnyFunction next;
    uint64_t seen[kMostErrors]; /* error + 1; 0 ends them */
};

static AnyFunction Find(void* library, const char* name) {
    AnyFunction function;
    *(void**)&function = dlsym(library, name);
    return function;
}

static AnyFunction Next(struct Export* export) {
    AnyFunction next = __atomic_load_n(&export->next, __ATOMIC_RELAXED);
    if (next == NULL) {
        next = Find(RTLD_NEXT, export->name);
        __atomic_store_n(&export->next, next, __ATOMIC_RELAXED);
    }
    return next;
}

static int IsNew(struct Export* export, uint32_t error) {
    for (int i = 0; i < kMostErrors; ++i) {
        uint64_t found = 0;
        if (__atomic_compare_exchange_n(&export->seen[i], &found, error + UINT64_C(1), 0, __ATOMIC_RELAXED,
                                        __ATOMIC_RELAXED))
            return 1;
        if (found == error + UINT64_C(1)) return 0;
    }
    return 0;
}

/* By the bare system calls: some programs make those of the C library fail. */
static void Note(struct Export* export, uint32_t error) {
    if (!IsNew(export, error)) return;
    const int before = errno;
    char number[16];
    char line[200];
    snprintf(number, sizeof(number), "%u", error);
    const int length = snprintf(line, sizeof(line), "%s %s %s\n", export->name,
                                error == kUntouched ? "unchanged" : number, program_invocation_short_name);
    const long file =
        syscall(SYS_openat, AT_FDCWD, SEEN_ERRORS, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    syscall(SYS_write, file, line, length);
    syscall(SYS_close, file);
    errno = before;
}

static uint32_t Begin(void) {
    const uint32_t before = GetLastError();
    SetLastError(kUntouched);
    return before;
}

static kestrel_bool End(struct Export* export, uint32_t before, kestrel_bool done) {
    const uint32_t error = GetLastError();
    if (error == kUntouched) SetLastError(before);
    if (!done) Note(export, error);
    return done;
}

#define EXPORT(name, parameters, arguments, values)                                             \
    static struct Export name##Export = {#name, (AnyFunction)name, NULL, {0}};                  \
    kestrel_bool name parameters {                                                              \
        kestrel_bool(*const next) parameters = (kestrel_bool(*) parameters)Next(&name##Export); \
        const uint32_t before = Begin();                                                        \
        return End(&name##Export, before, next arguments);                                      \
    }
#include "exports.inc"
#undef EXPORT

#define EXPORT(name, parameters, arguments, values) &name##Export,
static struct Export* const kExports[] = {
#include "exports.inc"
};

/* Of several libraries that a program loads, the first one's functions are noted. */
KESTREL_API AnyFunction GetProcAddress(void* module, const char* name) {
    const AnyFunction real = Find(RTLD_NEXT, "GetProcAddress");
    const AnyFunction found = ((AnyFunction(*)(void*, const char*))real)(module, name);
    for (size_t i = 0; found != NULL && i < sizeof(kExports) / sizeof(kExports[0]); ++i) {
        struct Export* const export = kExports[i];
        if (strcmp(export->name, name) != 0 || found == export->wrapper) continue;
        AnyFunction first = NULL;
        if (__atomic_compare_exchange_n(&export->next, &first, found, 0, __ATOMIC_RELAXED,
                                        __ATOMIC_RELAXED) ||
            first == found)
            return export->wrapper;
    }
    return found;
}
