// Time as the product sees it: milliseconds since the system started.
#include <time.h>
#include <unistd.h>
#include <windows.h>

#include <cerrno>

#include "winport/sync/futex.h"

ULONGLONG GetTickCount64() {
    // The coarse clock is read without asking the kernel; its steps of a few milliseconds are finer than
    // those of Windows.
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return static_cast<ULONGLONG>(now.tv_sec) * 1000 + static_cast<ULONGLONG>(now.tv_nsec) / 1'000'000;
}

DWORD GetTickCount() {
    return static_cast<DWORD>(GetTickCount64());
}

void Sleep(DWORD milliseconds) {
    if (milliseconds == INFINITE) {
        for (;;)
            pause();
    }
    timespec rest = {static_cast<time_t>(milliseconds / 1000),
                     static_cast<long>(milliseconds % 1000) * 1'000'000};
    while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) {
    count->QuadPart = winport::Now();
    return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
    frequency->QuadPart = 1'000'000'000;
    return TRUE;
}
