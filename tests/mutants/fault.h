#pragma once
// Put before every source of the faulty tree: which one of its faults is awake in this process.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace faults {

constexpr int NotAsked = -1;
constexpr int None = 0;

inline int awake = NotAsked;
inline unsigned char* reached =
    nullptr;  // a byte for each fault, in a file that all processes of a test share

inline void Ask() {
    const char* number = getenv("KESTREL_FAULT");
    const char* file = getenv("KESTREL_FAULTS_REACHED");
    const int descriptor = file == nullptr ? -1 : open(file, O_RDWR | O_CLOEXEC);
    struct stat status {};
    if (descriptor >= 0 && fstat(descriptor, &status) == 0) {
        void* bytes = mmap(nullptr, static_cast<size_t>(status.st_size), PROT_READ | PROT_WRITE, MAP_SHARED,
                           descriptor, 0);
        if (bytes != MAP_FAILED) reached = static_cast<unsigned char*>(bytes);
    }
    if (descriptor >= 0) close(descriptor);
    awake = number == nullptr ? None : atoi(number);
}

// What is settled by the compiler keeps its right form.
constexpr bool Awake(int fault) {
    if (__builtin_is_constant_evaluated()) return false;
    if (awake == NotAsked) Ask();
    if (reached != nullptr) reached[fault] = 1;
    return awake == fault;
}

}  // namespace faults
