/* The text form of globally unique identifiers (runtime/). */
#ifndef WINPORT_RPC_H
#define WINPORT_RPC_H

#include <guiddef.h>
#include <windows.h>

typedef GUID UUID;
typedef LONG RPC_STATUS;
/* Not LPWSTR, as on Windows: callers convert the pointer. */
typedef unsigned short* RPC_WSTR;
#define RPC_S_OK 0
#define RPC_S_OUT_OF_MEMORY ERROR_OUTOFMEMORY
#define RPC_S_INVALID_ARG ERROR_INVALID_PARAMETER

WINPORT_API RPC_STATUS UuidToStringW(const UUID* uuid, RPC_WSTR* text);
WINPORT_API RPC_STATUS RpcStringFreeW(RPC_WSTR* text);

#endif
