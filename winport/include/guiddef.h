/* Globally unique identifiers. */
#ifndef WINPORT_GUIDDEF_H
#define WINPORT_GUIDDEF_H

#include <stdint.h>

typedef struct {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
} GUID;

#endif
