// Capabilities come as a text, as a block, or as the presence of a key in a longer reply.
#include "settings/capabilities.h"

#include <cstring>
#include <vector>

#include "kwt/strings.h"
#include "session/remaining_time.h"
#include "settings/typed_queries.h"

namespace settings {
namespace {

constexpr uint32_t kCapabilitiesMs = 5000;
constexpr size_t kVersionBytes = 16;
constexpr uint32_t kNoVersion = ' ';

}  // namespace

bool GetCapRBNVer(session::KestrelSDK& sdk, uint32_t& version, uint32_t timeoutMs) {
    version = kNoVersion;
    WCHAR text[kVersionBytes / sizeof(WCHAR)];
    std::string_view reply;
    if (!sdk.Query({opl::Key::CapRBNVer, opl::Key::CapFWUpgrade}, reply, timeoutMs) ||
        !TakeText(sdk, text, sizeof(text), reply))
        return false;
    const std::string bytes = kwt::AsciiString(text).ToByteString();
    version = bytes.empty() ? 0 : static_cast<uint32_t>(static_cast<signed char>(bytes.front()));
    return true;
}

bool GetCapabilities(session::KestrelSDK& sdk, void* buffer, uint32_t size) {
    std::string_view reply;
    if (!sdk.Query(opl::Word::GetCapabilities, reply, kCapabilitiesMs)) return false;
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

bool GetServiceConfigured(session::KestrelSDK& sdk, opl::Key key, uint8_t& configured, uint32_t timeoutMs) {
    const session::RemainingTime time(timeoutMs);
    configured = 0;
    std::string_view reply;
    if (!sdk.Query(opl::Key::Configuration, reply, timeoutMs)) return false;
    if (reply.find(opl::KeyText(key)) == std::string_view::npos) return false;
    uint32_t left = 0;
    return time.IsLeft(left) && QueryBool(sdk, configured, key, left);
}

bool GetVendorProductIDs(session::KestrelSDK& sdk, uint32_t& vendor, uint32_t& product, uint32_t timeoutMs) {
    const session::RemainingTime time(timeoutMs);
    vendor = 0;
    product = 0;
    if (!QueryInt32(sdk, vendor, opl::Key::VendorID, timeoutMs)) return false;
    uint32_t left = 0;
    return time.IsLeft(left) && QueryInt32(sdk, product, opl::Key::ProductID, left);
}

}  // namespace settings
