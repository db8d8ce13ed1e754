#include "settings/capabilities.h"

#include <cstring>
#include <vector>

#include "kwt/strings.h"
#include "session/remaining_time.h"
#include "settings/typed_queries.h"

namespace {

constexpr uint32_t kCapabilitiesMs = 5000;
constexpr size_t kVersionBytes = 16;
constexpr uint32_t kNoVersion = ' ';

}  // namespace

bool GetCapRBNVer(KestrelSDK& sdk, uint32_t& version, uint32_t timeoutMs) {
    version = kNoVersion;
    WCHAR text[kVersionBytes / sizeof(WCHAR)];
    std::string& request = sdk.NewQuery(OplKey::CapRBNVer);
    sdk.builder.AppendQuery(request, OplKey::CapFWUpgrade);
    if (!QueryText(sdk, text, sizeof(text), request, timeoutMs)) return false;
    const std::string bytes = kwt::AsciiString(text).ToByteString();
    version = bytes.empty() ? 0 : static_cast<uint32_t>(static_cast<signed char>(bytes.front()));
    return true;
}

bool GetCapabilities(KestrelSDK& sdk, void* buffer, uint32_t size) {
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendWord(request, OplWord::GetCapabilities);
    std::string& reply = sdk.NewReply();
    if (!sdk.Query(request, reply, kCapabilitiesMs)) return false;
    std::vector<uint8_t> block;
    if (!sdk.parser.GetBinaryValue(reply, block)) return false;
    if (size == 0 || size > block.size()) return false;
    std::memcpy(buffer, block.data(), size);
    uint32_t ownSize = 0;
    if (size < sizeof(ownSize)) return false;
    std::memcpy(&ownSize, buffer, sizeof(ownSize));
    if (ownSize == 0 || ownSize > size) return false;
    std::memcpy(buffer, &size, sizeof(size));
    return true;
}

bool GetServiceConfigured(KestrelSDK& sdk, OplKey key, uint8_t& configured, uint32_t timeoutMs) {
    const RemainingTime time(timeoutMs);
    configured = 0;
    std::string& reply = sdk.NewReply();
    if (!sdk.Query(sdk.NewQuery(OplKey::Configuration), reply, timeoutMs)) return false;
    if (reply.find(KeyText(key)) == std::string::npos) return false;
    uint32_t left = 0;
    return time.IsLeft(left) && QueryBool(sdk, configured, sdk.NewQuery(key), left);
}

bool GetVendorProductIDs(KestrelSDK& sdk, uint32_t& vendor, uint32_t& product, uint32_t timeoutMs) {
    const RemainingTime time(timeoutMs);
    vendor = 0;
    product = 0;
    if (!QueryInt32(sdk, vendor, sdk.NewQuery(OplKey::VendorID), timeoutMs)) return false;
    uint32_t left = 0;
    return time.IsLeft(left) && QueryInt32(sdk, product, sdk.NewQuery(OplKey::ProductID), left);
}
