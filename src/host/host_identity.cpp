// The identity is the check sum of a random text, made once and kept in the registry.
#include "host/host_identity.h"

#include <windows.h>

#include <objbase.h>
#include <rpc.h>

#include <bit>
#include <string>

#include "host/crc64.h"
#include "host/product_config.h"
#include "kwt/strings.h"
#include "kwt/unique_handle.h"

namespace host {
namespace {

static_assert(std::endian::native == std::endian::little, "the identity is stored byte for byte");

constexpr const WCHAR* kValueName = TEXT("HostID");

bool Read(HKEY key, uint64_t& identity) {
    uint64_t stored = 0;
    DWORD type = 0;
    DWORD size = sizeof(stored);
    if (RegQueryValueExW(key, kValueName, nullptr, &type, reinterpret_cast<BYTE*>(&stored), &size) !=
            ERROR_SUCCESS ||
        type != REG_BINARY || size != sizeof(stored))
        return false;
    identity = stored;
    return true;
}

void FreeText(RPC_WSTR text) {
    RpcStringFreeW(&text);
}

/// 36 characters; empty when the system has none to give.
std::string RandomText() {
    UUID id = {};
    kwt::UniqueHandle<FreeText, 0, RPC_WSTR> text;
    if (FAILED(CoCreateGuid(&id)) || UuidToStringW(&id, text.Receive()) != RPC_S_OK) return {};
    return kwt::AsciiString(reinterpret_cast<const WCHAR*>(text.Get())).ToByteString();
}

}  // namespace

bool GetHostId(uint64_t& identity) {
    identity = 0;
    const CProductConfig& config = CProductConfig::Instance();
    const WideText path = config.IsLoaded() ? config.GetHostIdRegDir() : WideText();
    kwt::UniqueHandle<RegCloseKey> key;
    const bool open = RegCreateKeyExW(HKEY_USERS, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                      KEY_ALL_ACCESS, nullptr, key.Receive(), nullptr) == ERROR_SUCCESS;
    if (open && Read(key.Get(), identity)) return true;
    const std::string text = RandomText();
    if (text.empty()) return false;
    identity = Crc64(text);
    if (open)
        RegSetValueExW(key.Get(), kValueName, 0, REG_BINARY, reinterpret_cast<const BYTE*>(&identity),
                       sizeof(identity));
    return true;
}

}  // namespace host
