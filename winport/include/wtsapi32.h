/* The session at the console (process/). */
#ifndef WINPORT_WTSAPI32_H
#define WINPORT_WTSAPI32_H

#include <windows.h>

WINPORT_API BOOL WTSQueryUserToken(ULONG sessionId, LPHANDLE token);

#endif
