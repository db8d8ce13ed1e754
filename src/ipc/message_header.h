// How a message lies in a section. Both sides of a channel are built from this layout.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ipc {

#pragma pack(push, 1)
struct MessageHeader {
    uint32_t clientProcessId;  // whose message it is; 0 from a server to no client in particular
    uint32_t length;           // payload bytes; 0 means that nothing is pending
    uint8_t aborted;           // set by a server on the message of an aborted operation
    uint8_t broadcast;         // set by a server on a message to no client in particular
    uint16_t reserved;
};
#pragma pack(pop)

static_assert(sizeof(MessageHeader) == 12);
static_assert(offsetof(MessageHeader, length) == 4 && offsetof(MessageHeader, aborted) == 8);
static_assert(offsetof(MessageHeader, broadcast) == 9 && offsetof(MessageHeader, reserved) == 10);

}  // namespace ipc
