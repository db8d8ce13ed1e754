/* The system's own <time.h>, and the calls that Microsoft's C run-time adds to it (runtime/). */
#ifndef WINPORT_TIME_H
#define WINPORT_TIME_H

#include_next <time.h>

#include <stdint.h>

#ifdef __cplusplus
#define WINPORT_TIME_API extern "C" __attribute__((visibility("default")))
#else
#define WINPORT_TIME_API __attribute__((visibility("default")))
#endif

typedef int64_t __time64_t;
typedef int errno_t;

WINPORT_TIME_API __time64_t _time64(__time64_t* now);
WINPORT_TIME_API errno_t _localtime64_s(struct tm* local, const __time64_t* moment);
WINPORT_TIME_API __time64_t _mktime64(struct tm* local);
WINPORT_TIME_API __time64_t _mkgmtime64(struct tm* utc);
WINPORT_TIME_API void _tzset(void);
WINPORT_TIME_API int* WinportDaylight(void);

/* Not 0 when the time zone observes daylight saving time at all; settled by _tzset. */
#define _daylight (*WinportDaylight())

#endif
