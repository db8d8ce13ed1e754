/* The print spooler (spooler/). */
#ifndef WINPORT_WINSPOOL_H
#define WINPORT_WINSPOOL_H

#include <windows.h>

#define PRINTER_ENUM_DEFAULT 0x1
#define PRINTER_ENUM_LOCAL 0x2
#define PRINTER_ENUM_CONNECTIONS 0x4
#define PRINTER_ENUM_ICON8 0x800000
#define PRINTER_ATTRIBUTE_DEFAULT 0x4
#define PRINTER_ATTRIBUTE_LOCAL 0x40
#define PRINTER_ATTRIBUTE_ENABLE_BIDI 0x800
#define SERVER_ACCESS_ADMINISTER 0x1
#define SERVER_ALL_ACCESS 0xF0003
#define PRINTER_ACCESS_ADMINISTER 0x4
#define PRINTER_ACCESS_USE 0x8
#define PRINTER_ALL_ACCESS 0xF000C
#define APD_COPY_NEW_FILES 0x8
#define APD_COPY_FROM_DIRECTORY 0x10

typedef struct WinportDevMode* LPDEVMODEW;

typedef struct {
    LPWSTR pDatatype;
    LPDEVMODEW pDevMode;
    DWORD DesiredAccess;
} PRINTER_DEFAULTSW, *LPPRINTER_DEFAULTSW;

typedef struct {
    DWORD Flags;
    LPWSTR pDescription;
    LPWSTR pName;
    LPWSTR pComment;
} PRINTER_INFO_1W;

typedef struct {
    LPWSTR pServerName;
    LPWSTR pPrinterName;
    LPWSTR pShareName;
    LPWSTR pPortName;
    LPWSTR pDriverName;
    LPWSTR pComment;
    LPWSTR pLocation;
    LPDEVMODEW pDevMode;
    LPWSTR pSepFile;
    LPWSTR pPrintProcessor;
    LPWSTR pDatatype;
    LPWSTR pParameters;
    PSECURITY_DESCRIPTOR pSecurityDescriptor;
    DWORD Attributes;
    DWORD Priority;
    DWORD DefaultPriority;
    DWORD StartTime;
    DWORD UntilTime;
    DWORD Status;
    DWORD cJobs;
    DWORD AveragePPM;
} PRINTER_INFO_2W;

typedef struct {
    LPWSTR pName;
} DRIVER_INFO_1W;

typedef struct {
    DWORD cVersion;
    LPWSTR pName;
    LPWSTR pEnvironment;
    LPWSTR pDriverPath;
    LPWSTR pDataFile;
    LPWSTR pConfigFile;
    LPWSTR pHelpFile;
    LPWSTR pDependentFiles;
    LPWSTR pMonitorName;
    LPWSTR pDefaultDataType;
} DRIVER_INFO_3W;

typedef struct {
    LPWSTR pName;
} PORT_INFO_1W;

WINPORT_API BOOL EnumPrintersW(DWORD flags, LPWSTR name, DWORD level, LPBYTE buffer, DWORD size,
                               LPDWORD needed, LPDWORD returned);
WINPORT_API BOOL OpenPrinterW(LPWSTR name, LPHANDLE printer, LPPRINTER_DEFAULTSW defaults);
WINPORT_API BOOL ClosePrinter(HANDLE printer);
WINPORT_API BOOL GetPrinterW(HANDLE printer, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed);
WINPORT_API BOOL SetPrinterW(HANDLE printer, DWORD level, LPBYTE info, DWORD command);
WINPORT_API HANDLE AddPrinterW(LPWSTR server, DWORD level, LPBYTE info);
WINPORT_API BOOL DeletePrinter(HANDLE printer);
WINPORT_API DWORD GetPrinterDataW(HANDLE printer, LPWSTR valueName, LPDWORD type, LPBYTE data, DWORD size,
                                  LPDWORD needed);
WINPORT_API DWORD SetPrinterDataW(HANDLE printer, LPWSTR valueName, DWORD type, LPBYTE data, DWORD size);
WINPORT_API DWORD DeletePrinterDataW(HANDLE printer, LPWSTR valueName);
WINPORT_API BOOL GetPrinterDriverDirectoryW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE buffer,
                                            DWORD size, LPDWORD needed);
WINPORT_API BOOL AddPrinterDriverExW(LPWSTR server, DWORD level, LPBYTE info, DWORD flags);
WINPORT_API BOOL EnumPrinterDriversW(LPWSTR server, LPWSTR environment, DWORD level, LPBYTE buffer,
                                     DWORD size, LPDWORD needed, LPDWORD returned);
WINPORT_API BOOL EnumPortsW(LPWSTR server, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed,
                            LPDWORD returned);
WINPORT_API BOOL XcvDataW(HANDLE monitor, LPCWSTR request, LPBYTE input, DWORD inputSize, LPBYTE output,
                          DWORD outputSize, LPDWORD outputNeeded, LPDWORD status);
WINPORT_API BOOL SetDefaultPrinterW(LPCWSTR name);
WINPORT_API BOOL GetDefaultPrinterW(LPWSTR buffer, LPDWORD size);

#endif
