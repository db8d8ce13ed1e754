/* The environment and profile of an account (process/). */
#ifndef WINPORT_USERENV_H
#define WINPORT_USERENV_H

#include <windows.h>

typedef struct {
    DWORD dwSize;
    DWORD dwFlags;
    LPWSTR lpUserName;
    LPWSTR lpProfilePath;
    LPWSTR lpDefaultPath;
    LPWSTR lpServerName;
    LPWSTR lpPolicyPath;
    HANDLE hProfile;
} PROFILEINFOW, *LPPROFILEINFOW;

WINPORT_API BOOL LoadUserProfileW(HANDLE token, LPPROFILEINFOW profile);
WINPORT_API BOOL UnloadUserProfile(HANDLE token, HANDLE profile);
WINPORT_API BOOL CreateEnvironmentBlock(LPVOID* environment, HANDLE token, BOOL inherit);
WINPORT_API BOOL DestroyEnvironmentBlock(LPVOID environment);

#endif
