#include "failing.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdarg.h>
#include <stddef.h>
#include <sys/types.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

// Declared here and not by their headers, which say more about them than can be said again.
struct stat;
struct stat64;

namespace {

using failing::Kind;

std::atomic<Kind> armedKind{Kind::None};
std::atomic<long> calls{0};
long failingCall = 0;
bool failsForever = false;
int failure = 0;

bool Fails(Kind kind) {
    if (armedKind.load(std::memory_order_relaxed) != kind) return false;
    const long call = ++calls;
    if (call != failingCall && !(failsForever && call > failingCall)) return false;
    errno = failure == failing::kShortRead ? EINTR : failure;
    return true;
}

// The kernel never refuses that.
bool GivesLockBack(int command, const void* argument) {
    const bool isLock = command == F_SETLK || command == F_SETLKW || command == F_OFD_SETLK;
    return isLock && static_cast<const struct flock*>(argument)->l_type == F_UNLCK;
}

template <typename Function>
Function Real(Function, const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

void failing::Arm(Kind kind, long nth, bool forever, int error) {
    calls = 0;
    failingCall = nth;
    failsForever = forever;
    failure = error;
    armedKind = kind;
}

long failing::Disarm() {
    armedKind = Kind::None;
    return calls;
}

#define KESTREL_CALL(Type, name, failed, parameters, arguments)   \
    __attribute__((visibility("default"))) Type name parameters { \
        static const auto real = Real(&name, #name);              \
        return Fails(Kind::SystemCall) ? failed : real arguments; \
    }
#define KESTREL_READ(name, parameters, whole, half)                         \
    __attribute__((visibility("default"))) ssize_t name parameters {        \
        static const auto real = Real(&name, #name);                        \
        if (!Fails(Kind::SystemCall)) return real whole;                    \
        return failure == failing::kShortRead && size > 1 ? real half : -1; \
    }
// The third argument is passed on as it came, whether there is one or not.
#define KESTREL_VARIADIC(name, First, mayFail)                                       \
    __attribute__((visibility("default"))) int name(First first, int second, ...) {  \
        static const auto real = Real(&name, #name);                                 \
        va_list rest;                                                                \
        va_start(rest, second);                                                      \
        void* const third = va_arg(rest, void*);                                     \
        va_end(rest);                                                                \
        return mayFail && Fails(Kind::SystemCall) ? -1 : real(first, second, third); \
    }
#define KESTREL_PAUSE(name, parameters, arguments)                                  \
    __attribute__((visibility("default"))) int name parameters {                    \
        static const auto real = Real(&name, #name);                                \
        return armedKind.load() != Kind::None && failsForever ? 0 : real arguments; \
    }
#define KESTREL_ALLOCATE(name, libc, parameters, arguments)        \
    void* libc parameters;                                         \
    __attribute__((visibility("default"))) void* name parameters { \
        return Fails(Kind::Allocation) ? nullptr : libc arguments; \
    }

extern "C" {

KESTREL_VARIADIC(open, const char*, true)
KESTREL_VARIADIC(open64, const char*, true)
KESTREL_VARIADIC(fcntl, int, !GivesLockBack(second, third))
KESTREL_VARIADIC(fcntl64, int, !GivesLockBack(second, third))
KESTREL_CALL(int, fstat, -1, (int file, struct stat* status), (file, status))
KESTREL_CALL(int, fstat64, -1, (int file, struct stat64* status), (file, status))
KESTREL_CALL(int, stat, -1, (const char* path, struct stat* status), (path, status))
KESTREL_CALL(int, stat64, -1, (const char* path, struct stat64* status), (path, status))
KESTREL_CALL(int, lstat, -1, (const char* path, struct stat* status), (path, status))
KESTREL_CALL(int, fchmod, -1, (int file, mode_t mode), (file, mode))
KESTREL_CALL(int, mkdir, -1, (const char* path, mode_t mode), (path, mode))
KESTREL_CALL(int, ftruncate64, -1, (int file, off64_t size), (file, size))
KESTREL_CALL(int, fdatasync, -1, (int file), (file))
KESTREL_CALL(int, fsync, -1, (int file), (file))
KESTREL_CALL(void*, opendir, nullptr, (const char* path), (path))
KESTREL_CALL(int, posix_fallocate, errno, (int file, off_t start, off_t size), (file, start, size))
KESTREL_CALL(void*, mmap, reinterpret_cast<void*>(-1L),
             (void* at, size_t size, int protection, int flags, int file, off_t start),
             (at, size, protection, flags, file, start))
KESTREL_CALL(void*, mmap64, reinterpret_cast<void*>(-1L),
             (void* at, size_t size, int protection, int flags, int file, off64_t start),
             (at, size, protection, flags, file, start))
KESTREL_CALL(int, pthread_create, EAGAIN,
             (pthread_t * thread, const pthread_attr_t* how, void* (*run)(void*), void* with),
             (thread, how, run, with))
KESTREL_READ(read, (int file, void* to, size_t size), (file, to, size), (file, to, size / 2))
KESTREL_READ(write, (int file, const void* from, size_t size), (file, from, size), (file, from, size / 2))
KESTREL_READ(pread64, (int file, void* to, size_t size, off64_t at), (file, to, size, at),
             (file, to, size / 2, at))
KESTREL_READ(pwrite64, (int file, const void* from, size_t size, off64_t at), (file, from, size, at),
             (file, from, size / 2, at))

// What is tried again after a pause is tried again at once.
KESTREL_PAUSE(usleep, (unsigned microseconds), (microseconds))
KESTREL_PAUSE(nanosleep, (const timespec* time, timespec* left), (time, left))

KESTREL_ALLOCATE(malloc, __libc_malloc, (size_t size), (size))
KESTREL_ALLOCATE(calloc, __libc_calloc, (size_t count, size_t size), (count, size))
KESTREL_ALLOCATE(realloc, __libc_realloc, (void* old, size_t size), (old, size))
KESTREL_ALLOCATE(aligned_alloc, __libc_memalign, (size_t alignment, size_t size), (alignment, size))

}  // extern "C"
