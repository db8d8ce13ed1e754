/* The Windows interfaces that the product calls, as winport provides them on Linux.
   A call that is not declared here is not there: it fails to compile, never at run time.
   What each call honours and where it differs from Windows stands in winport/README.md. */
#ifndef WINPORT_WINDOWS_H
#define WINPORT_WINDOWS_H

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <uchar.h>
#endif

#ifdef __cplusplus
#define WINPORT_EXTERN_C extern "C"
#else
#define WINPORT_EXTERN_C
#endif
#define WINPORT_API WINPORT_EXTERN_C __attribute__((visibility("default")))

#define WINAPI
#define APIENTRY
#define CALLBACK
#define TRUE 1
#define FALSE 0
#define MAX_PATH 260
#define INFINITE 0xFFFFFFFFu
#define TEXT(literal) u##literal

typedef int BOOL;
typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef unsigned int UINT;
typedef int INT;
typedef uint64_t ULONGLONG;
typedef int64_t LONGLONG;
typedef size_t SIZE_T;
typedef uintptr_t ULONG_PTR;
typedef uintptr_t DWORD_PTR;
typedef char CHAR;
typedef char16_t WCHAR;
typedef void* PVOID;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef BOOL* LPBOOL;
typedef BYTE* LPBYTE;
typedef DWORD* LPDWORD;
typedef LONG* PLONG;
typedef intptr_t INT_PTR;
typedef uintptr_t UINT_PTR;
typedef intptr_t LONG_PTR;
typedef UINT_PTR WPARAM;
typedef LONG_PTR LPARAM;
typedef LONG_PTR LRESULT;
typedef CHAR* LPSTR;
typedef const CHAR* LPCSTR;
typedef const CHAR* LPCCH;
typedef WCHAR* LPWSTR;
typedef const WCHAR* LPCWSTR;
typedef const WCHAR* LPCWCH;

typedef void* HANDLE;
typedef HANDLE* LPHANDLE;
typedef struct WinportModule* HMODULE;
typedef HMODULE HINSTANCE;
typedef intptr_t (*FARPROC)(void);
#define INVALID_HANDLE_VALUE ((HANDLE)(intptr_t)-1)

typedef union {
    struct {
        DWORD LowPart;
        LONG HighPart;
    } u;
    LONGLONG QuadPart;
} LARGE_INTEGER;

typedef struct {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
} FILETIME;

/* ---- last-error values ---- */
#define NO_ERROR 0u
#define ERROR_SUCCESS 0
#define ERROR_FILE_NOT_FOUND 2
#define ERROR_PATH_NOT_FOUND 3
#define ERROR_TOO_MANY_OPEN_FILES 4
#define ERROR_ACCESS_DENIED 5
#define ERROR_INVALID_HANDLE 6
#define ERROR_NOT_ENOUGH_MEMORY 8
#define ERROR_INVALID_DATA 13
#define ERROR_OUTOFMEMORY 14
#define ERROR_BAD_COMMAND 22
#define ERROR_CRC 23
#define ERROR_BAD_LENGTH 24
#define ERROR_GEN_FAILURE 31
#define ERROR_SHARING_VIOLATION 32
#define ERROR_NOT_SUPPORTED 50
#define ERROR_FILE_EXISTS 80
#define ERROR_INVALID_PARAMETER 87
#define ERROR_OPEN_FAILED 110
#define ERROR_DISK_FULL 112
#define ERROR_INSUFFICIENT_BUFFER 122
#define ERROR_INVALID_NAME 123
#define ERROR_INVALID_LEVEL 124
#define ERROR_MOD_NOT_FOUND 126
#define ERROR_PROC_NOT_FOUND 127
#define ERROR_BAD_PATHNAME 161
#define ERROR_BUSY 170
#define ERROR_ALREADY_EXISTS 183
#define ERROR_BAD_EXE_FORMAT 193
#define ERROR_FILENAME_EXCED_RANGE 206
#define ERROR_LOCKED 212
#define ERROR_MORE_DATA 234
#define WAIT_TIMEOUT 258u
#define ERROR_DIRECTORY 267
#define ERROR_NO_MORE_ITEMS 259
#define ERROR_INVALID_ADDRESS 487
#define ERROR_NOT_OWNER 288
#define ERROR_ABANDONED_WAIT_0 735
#define ERROR_OPERATION_ABORTED 995
#define ERROR_NOACCESS 998
#define ERROR_INVALID_FLAGS 1004
#define ERROR_NO_TOKEN 1008
#define ERROR_BADDB 1009
#define ERROR_KEY_DELETED 1018
#define ERROR_IO_DEVICE 1117
#define ERROR_DLL_INIT_FAILED 1114
#define ERROR_UNKNOWN_REVISION 1305
#define ERROR_BAD_IMPERSONATION_LEVEL 1346
#define ERROR_BAD_TOKEN_TYPE 1349
#define ERROR_INVALID_WINDOW_HANDLE 1400
#define ERROR_INVALID_THREAD_ID 1444
#define ERROR_RESOURCE_NAME_NOT_FOUND 1814
#define ERROR_NOT_ENOUGH_QUOTA 1816
#define ERROR_NO_UNICODE_TRANSLATION 1113
#define ERROR_NOT_FOUND 1168
#define ERROR_BAD_CONFIGURATION 1610
#define ERROR_FILE_CORRUPT 1392
#define ERROR_NO_SYSTEM_RESOURCES 1450
#define ERROR_COMMITMENT_LIMIT 1455
#define ERROR_TIMEOUT 1460
#define RPC_S_SERVER_UNAVAILABLE 1722
#define RPC_S_CALL_FAILED_DNE 1727
#define ERROR_UNKNOWN_PRINTER_DRIVER 1797
#define ERROR_INVALID_PRINTER_NAME 1801
#define ERROR_PRINTER_ALREADY_EXISTS 1802
#define ERROR_INVALID_ENVIRONMENT 1805
#define ERROR_PRINTER_DELETED 1905
#define ERROR_INVALID_DATATYPE 1804
#define ERROR_UNKNOWN_PORT 1796
#define ERROR_PRINTER_DRIVER_ALREADY_INSTALLED 1795
#define ERROR_PRINTER_DRIVER_IN_USE 3001

WINPORT_API DWORD GetLastError(void);
WINPORT_API void SetLastError(DWORD error);

/* ---- module/ ---- */
#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1
#define DLL_THREAD_ATTACH 2
#define DLL_THREAD_DETACH 3
#define TLS_OUT_OF_INDEXES 0xFFFFFFFFu

WINPORT_API HMODULE LoadLibraryW(LPCWSTR fileName);
WINPORT_API BOOL FreeLibrary(HMODULE module);
WINPORT_API FARPROC GetProcAddress(HMODULE module, LPCSTR name);
WINPORT_API HMODULE GetModuleHandleW(LPCWSTR fileName);
WINPORT_API DWORD GetModuleFileNameW(HMODULE module, LPWSTR buffer, DWORD capacity);
WINPORT_API DWORD TlsAlloc(void);
WINPORT_API BOOL TlsFree(DWORD index);
WINPORT_API LPVOID TlsGetValue(DWORD index);
WINPORT_API BOOL TlsSetValue(DWORD index, LPVOID value);

/* ---- handles/ ---- */
WINPORT_API BOOL CloseHandle(HANDLE handle);

/* ---- sync/ ---- */
#define WAIT_OBJECT_0 0u
#define WAIT_ABANDONED 0x80u
#define WAIT_ABANDONED_0 0x80u
#define WAIT_FAILED 0xFFFFFFFFu
#define MAXIMUM_WAIT_OBJECTS 64
#define SECURITY_DESCRIPTOR_REVISION 1

typedef struct {
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
} SECURITY_ATTRIBUTES, *LPSECURITY_ATTRIBUTES;

typedef struct {
    BYTE Revision;
    BYTE Sbz1;
    WORD Control;
    PVOID Owner;
    PVOID Group;
    PVOID Sacl;
    PVOID Dacl;
} SECURITY_DESCRIPTOR, *PSECURITY_DESCRIPTOR_STRUCT;
typedef PVOID PSECURITY_DESCRIPTOR;
typedef struct WinportAcl* PACL;

typedef struct {
    uint32_t state;     /* 0 free, 1 held, 2 held with sleepers */
    uint32_t ownerId;   /* thread id of the owner, 0 when free */
    uint32_t recursion; /* levels beyond the first */
} CRITICAL_SECTION, *LPCRITICAL_SECTION;

WINPORT_API BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision);
WINPORT_API BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL acl,
                                           BOOL defaulted);

WINPORT_API HANDLE CreateEventW(LPSECURITY_ATTRIBUTES security, BOOL manualReset, BOOL initialState,
                                LPCWSTR name);
WINPORT_API BOOL SetEvent(HANDLE event);
WINPORT_API BOOL ResetEvent(HANDLE event);
WINPORT_API HANDLE CreateMutexW(LPSECURITY_ATTRIBUTES security, BOOL initialOwner, LPCWSTR name);
WINPORT_API BOOL ReleaseMutex(HANDLE mutex);
WINPORT_API DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
WINPORT_API DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll,
                                         DWORD milliseconds);

WINPORT_API void InitializeCriticalSection(LPCRITICAL_SECTION section);
WINPORT_API void EnterCriticalSection(LPCRITICAL_SECTION section);
WINPORT_API BOOL TryEnterCriticalSection(LPCRITICAL_SECTION section);
WINPORT_API void LeaveCriticalSection(LPCRITICAL_SECTION section);
WINPORT_API void DeleteCriticalSection(LPCRITICAL_SECTION section);

WINPORT_API DWORD GetTickCount(void);
WINPORT_API ULONGLONG GetTickCount64(void);
WINPORT_API void Sleep(DWORD milliseconds);
WINPORT_API BOOL QueryPerformanceCounter(LARGE_INTEGER* count);
WINPORT_API BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);

/* ---- sections/ ---- */
#define PAGE_READONLY 0x02
#define PAGE_READWRITE 0x04
#define FILE_MAP_WRITE 0x0002
#define FILE_MAP_READ 0x0004
#define FILE_MAP_ALL_ACCESS 0xF001F
#define MEM_COMMIT 0x1000
#define MEM_FREE 0x10000
#define MEM_MAPPED 0x40000

typedef struct {
    PVOID BaseAddress;
    PVOID AllocationBase;
    DWORD AllocationProtect;
    SIZE_T RegionSize;
    DWORD State;
    DWORD Protect;
    DWORD Type;
} MEMORY_BASIC_INFORMATION;

WINPORT_API HANDLE CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protection,
                                      DWORD sizeHigh, DWORD sizeLow, LPCWSTR name);
WINPORT_API LPVOID MapViewOfFile(HANDLE mapping, DWORD access, DWORD offsetHigh, DWORD offsetLow,
                                 SIZE_T size);
WINPORT_API BOOL UnmapViewOfFile(LPCVOID view);
WINPORT_API SIZE_T VirtualQuery(LPCVOID address, MEMORY_BASIC_INFORMATION* info, SIZE_T size);

/* ---- text/ ---- */
#define CP_ACP 0u

WINPORT_API int MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH text, int length, LPWSTR buffer,
                                    int capacity);
WINPORT_API int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH text, int length, LPSTR buffer,
                                    int capacity, LPCCH defaultChar, LPBOOL usedDefaultChar);
WINPORT_API UINT GetACP(void);

/* ---- files/ ---- */
#define INVALID_FILE_ATTRIBUTES 0xFFFFFFFFu
#define FILE_ATTRIBUTE_READONLY 0x1
#define FILE_ATTRIBUTE_DIRECTORY 0x10
#define FILE_ATTRIBUTE_NORMAL 0x80
#define GENERIC_READ 0x80000000u
#define FILE_SHARE_READ 0x1
#define FILE_SHARE_WRITE 0x2
#define OPEN_EXISTING 3

WINPORT_API DWORD GetFileAttributesW(LPCWSTR path);
WINPORT_API HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                               DWORD disposition, DWORD flags, HANDLE templateFile);

/* ---- profile/ ---- */
WINPORT_API DWORD GetPrivateProfileSectionW(LPCWSTR section, LPWSTR buffer, DWORD capacity, LPCWSTR path);
WINPORT_API DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR fallback, LPWSTR buffer,
                                           DWORD capacity, LPCWSTR path);
WINPORT_API UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT fallback, LPCWSTR path);

/* ---- registry/ ---- */
typedef struct WinportRegistryKey* HKEY;
typedef HKEY* PHKEY;
typedef LONG LSTATUS;
typedef DWORD REGSAM;
#define HKEY_CLASSES_ROOT ((HKEY)(uintptr_t)0x80000000u)
#define HKEY_CURRENT_USER ((HKEY)(uintptr_t)0x80000001u)
#define HKEY_LOCAL_MACHINE ((HKEY)(uintptr_t)0x80000002u)
#define HKEY_USERS ((HKEY)(uintptr_t)0x80000003u)
#define KEY_QUERY_VALUE 0x0001
#define KEY_SET_VALUE 0x0002
#define KEY_CREATE_SUB_KEY 0x0004
#define KEY_ENUMERATE_SUB_KEYS 0x0008
#define KEY_READ 0x20019
#define KEY_WRITE 0x20006
#define KEY_ALL_ACCESS 0xF003F
#define REG_OPTION_NON_VOLATILE 0
#define REG_CREATED_NEW_KEY 1
#define REG_OPENED_EXISTING_KEY 2
#define REG_NONE 0
#define REG_SZ 1
#define REG_EXPAND_SZ 2
#define REG_BINARY 3
#define REG_DWORD 4
#define REG_MULTI_SZ 7

WINPORT_API LSTATUS RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR className, DWORD options,
                                    REGSAM access, const SECURITY_ATTRIBUTES* security, PHKEY result,
                                    LPDWORD disposition);
WINPORT_API LSTATUS RegCreateKeyW(HKEY key, LPCWSTR subKey, PHKEY result);
WINPORT_API LSTATUS RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result);
WINPORT_API LSTATUS RegOpenKeyW(HKEY key, LPCWSTR subKey, PHKEY result);
WINPORT_API LSTATUS RegCloseKey(HKEY key);
WINPORT_API LSTATUS RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                     LPDWORD size);
WINPORT_API LSTATUS RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                                   DWORD size);
WINPORT_API LSTATUS RegDeleteValueW(HKEY key, LPCWSTR name);
WINPORT_API LSTATUS RegDeleteTreeW(HKEY key, LPCWSTR subKey);
WINPORT_API LSTATUS RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameLength, LPDWORD reserved,
                                  LPWSTR className, LPDWORD classLength, FILETIME* lastWrite);

#include <processthreadsapi.h>
#include <winuser.h>

#endif
