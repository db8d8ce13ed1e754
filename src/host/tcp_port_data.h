// How a port is described to the Standard TCP/IP port monitor: its published description, version 1. The
// headers of not every compiler have it.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace host {

struct TcpPortData {
    WCHAR portName[64] = {};
    uint32_t version = 1;
    uint32_t protocol = 1;  // raw TCP
    uint32_t size = 964;
    uint32_t reserved = 0;
    WCHAR hostAddress[49] = {};
    WCHAR snmpCommunity[33] = {};
    uint32_t doubleSpool = 0;
    WCHAR queue[33] = {};
    WCHAR ipAddress[16] = {};
    uint8_t reservedBytes[542] = {};  // two of them fill the gap in front of the next number
    uint32_t portNumber = 0;
    uint32_t snmpEnabled = 0;
    uint32_t snmpDeviceIndex = 0;
};
static_assert(sizeof(TcpPortData) == 964 && offsetof(TcpPortData, version) == 128 &&
              offsetof(TcpPortData, size) == 136 && offsetof(TcpPortData, hostAddress) == 144 &&
              offsetof(TcpPortData, doubleSpool) == 308 && offsetof(TcpPortData, portNumber) == 952);

}  // namespace host
