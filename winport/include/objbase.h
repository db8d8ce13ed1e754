/* Making globally unique identifiers (runtime/). */
#ifndef WINPORT_OBJBASE_H
#define WINPORT_OBJBASE_H

#include <guiddef.h>
#include <windows.h>

typedef LONG HRESULT;
#define S_OK ((HRESULT)0)
#define E_INVALIDARG ((HRESULT)0x80070057u)
#define E_FAIL ((HRESULT)0x80004005u)
#define SUCCEEDED(result) ((HRESULT)(result) >= 0)
#define FAILED(result) ((HRESULT)(result) < 0)

WINPORT_API HRESULT CoCreateGuid(GUID* guid);

#endif
