// Stands in for the system's program that installs printers: what it was asked to do is a line of
// rundll32.log in the test's folder. The system looks beside the calling program first.
#include <windows.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    WCHAR path[MAX_PATH];
    ExpandEnvironmentStringsW(L"%KESTREL_TEST_FOLDER%\\rundll32.log", path, MAX_PATH);
    const HANDLE file = CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return 1;
    char line[2048];
    int length =
        WideCharToMultiByte(CP_UTF8, 0, GetCommandLineW(), -1, line, sizeof(line) - 1, nullptr, nullptr);
    if (length > 0) line[length - 1] = '\n';
    DWORD written = 0;
    WriteFile(file, line, static_cast<DWORD>(length), &written, nullptr);
    CloseHandle(file);
    return 0;
}
