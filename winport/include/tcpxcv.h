/* How the port monitor of the network printers takes a new port (spooler/). */
#ifndef WINPORT_TCPXCV_H
#define WINPORT_TCPXCV_H

#include <windows.h>

#define PROTOCOL_RAWTCP_TYPE 1
#define PROTOCOL_LPR_TYPE 2
#define MAX_PORTNAME_LEN (63 + 1)
#define MAX_NETWORKNAME_LEN (48 + 1)
#define MAX_SNMP_COMMUNITY_STR_LEN (32 + 1)
#define MAX_QUEUENAME_LEN (32 + 1)
#define MAX_IPADDR_STR_LEN (15 + 1)

typedef struct {
    WCHAR sztPortName[MAX_PORTNAME_LEN];
    DWORD dwVersion;
    DWORD dwProtocol;
    DWORD cbSize;
    DWORD dwReserved;
    WCHAR sztHostAddress[MAX_NETWORKNAME_LEN];
    WCHAR sztSNMPCommunity[MAX_SNMP_COMMUNITY_STR_LEN];
    DWORD dwDoubleSpool;
    WCHAR sztQueue[MAX_QUEUENAME_LEN];
    WCHAR sztIPAddress[MAX_IPADDR_STR_LEN];
    BYTE Reserved[540];
    DWORD dwPortNumber;
    DWORD dwSNMPEnabled;
    DWORD dwSNMPDevIndex;
} PORT_DATA_1, *PPORT_DATA_1;

#endif
