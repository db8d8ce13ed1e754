/* The process list (process/). */
#ifndef WINPORT_PSAPI_H
#define WINPORT_PSAPI_H

#include <windows.h>

WINPORT_API BOOL EnumProcesses(DWORD* processIds, DWORD size, LPDWORD needed);

#endif
