/* Programs that are started, and the accounts they run as (process/). Included by <windows.h>. */
#ifndef WINPORT_PROCESSTHREADSAPI_H
#define WINPORT_PROCESSTHREADSAPI_H

#include <windows.h>

#define DETACHED_PROCESS 0x8
#define CREATE_UNICODE_ENVIRONMENT 0x400
#define STARTF_USESHOWWINDOW 0x1
#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define STILL_ACTIVE 259u
#define MAXIMUM_ALLOWED 0x2000000
#define TOKEN_ALL_ACCESS 0xF01FF
#define TOKEN_ASSIGN_PRIMARY 0x1
#define TOKEN_DUPLICATE 0x2
#define TOKEN_IMPERSONATE 0x4
#define TOKEN_QUERY 0x8
#define UNLEN 256

typedef struct {
    DWORD cb;
    LPWSTR lpReserved;
    LPWSTR lpDesktop;
    LPWSTR lpTitle;
    DWORD dwX;
    DWORD dwY;
    DWORD dwXSize;
    DWORD dwYSize;
    DWORD dwXCountChars;
    DWORD dwYCountChars;
    DWORD dwFillAttribute;
    DWORD dwFlags;
    WORD wShowWindow;
    WORD cbReserved2;
    LPBYTE lpReserved2;
    HANDLE hStdInput;
    HANDLE hStdOutput;
    HANDLE hStdError;
} STARTUPINFOW, *LPSTARTUPINFOW;

typedef struct {
    HANDLE hProcess;
    HANDLE hThread;
    DWORD dwProcessId;
    DWORD dwThreadId;
} PROCESS_INFORMATION, *LPPROCESS_INFORMATION;

typedef enum {
    SecurityAnonymous,
    SecurityIdentification,
    SecurityImpersonation,
    SecurityDelegation
} SECURITY_IMPERSONATION_LEVEL;

typedef enum { TokenPrimary = 1, TokenImpersonation = 2 } TOKEN_TYPE;

WINPORT_API DWORD GetCurrentProcessId(void);
WINPORT_API DWORD GetCurrentThreadId(void);
WINPORT_API HANDLE GetCurrentThread(void);

WINPORT_API BOOL CreateProcessW(LPCWSTR program, LPWSTR commandLine, LPSECURITY_ATTRIBUTES processSecurity,
                                LPSECURITY_ATTRIBUTES threadSecurity, BOOL inheritHandles, DWORD flags,
                                LPVOID environment, LPCWSTR folder, LPSTARTUPINFOW startup,
                                LPPROCESS_INFORMATION process);
WINPORT_API BOOL CreateProcessAsUserW(HANDLE token, LPCWSTR program, LPWSTR commandLine,
                                      LPSECURITY_ATTRIBUTES processSecurity,
                                      LPSECURITY_ATTRIBUTES threadSecurity, BOOL inheritHandles, DWORD flags,
                                      LPVOID environment, LPCWSTR folder, LPSTARTUPINFOW startup,
                                      LPPROCESS_INFORMATION process);
WINPORT_API BOOL TerminateProcess(HANDLE process, UINT exitCode);
WINPORT_API BOOL GetExitCodeProcess(HANDLE process, LPDWORD exitCode);
WINPORT_API BOOL GetExitCodeThread(HANDLE thread, LPDWORD exitCode);

WINPORT_API BOOL ImpersonateSelf(SECURITY_IMPERSONATION_LEVEL level);
WINPORT_API BOOL RevertToSelf(void);
WINPORT_API BOOL OpenThreadToken(HANDLE thread, DWORD access, BOOL openAsSelf, LPHANDLE token);
WINPORT_API BOOL DuplicateTokenEx(HANDLE token, DWORD access, LPSECURITY_ATTRIBUTES security,
                                  SECURITY_IMPERSONATION_LEVEL level, TOKEN_TYPE type, LPHANDLE duplicate);
WINPORT_API BOOL GetUserNameW(LPWSTR buffer, LPDWORD size);
WINPORT_API DWORD WTSGetActiveConsoleSessionId(void);

#endif
