#include <objbase.h>
#include <rpc.h>
#include <sys/random.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>

HRESULT CoCreateGuid(GUID* guid) {
    if (guid == nullptr) return E_INVALIDARG;
    if (::getrandom(guid, sizeof *guid, 0) != sizeof *guid) return E_FAIL;
    // Version 4 (random), variant 1.
    guid->Data3 = static_cast<uint16_t>((guid->Data3 & 0x0FFF) | 0x4000);
    guid->Data4[0] = static_cast<uint8_t>((guid->Data4[0] & 0x3F) | 0x80);
    return S_OK;
}

RPC_STATUS UuidToStringW(const UUID* uuid, RPC_WSTR* text) {
    constexpr std::size_t kLength = 36;
    if (text == nullptr) return RPC_S_INVALID_ARG;
    const UUID nil = {};
    const UUID& id = uuid != nullptr ? *uuid : nil;
    const uint8_t* last = id.Data4;
    char digits[kLength + 1];
    static_cast<void>(std::snprintf(digits, sizeof digits, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                                    id.Data1, id.Data2, id.Data3, last[0], last[1], last[2], last[3], last[4],
                                    last[5], last[6], last[7]));
    *text = static_cast<RPC_WSTR>(std::malloc(sizeof(**text) * std::size(digits)));
    if (*text == nullptr) return RPC_S_OUT_OF_MEMORY;
    for (std::size_t i = 0; i <= kLength; ++i)
        (*text)[i] = static_cast<unsigned char>(digits[i]);
    return RPC_S_OK;
}

RPC_STATUS RpcStringFreeW(RPC_WSTR* text) {
    if (text == nullptr) return RPC_S_INVALID_ARG;
    std::free(*text);
    *text = nullptr;
    return RPC_S_OK;
}
