#include "settings/typed_queries.h"

#include <algorithm>
#include <vector>

#include "kestrel/sdk_errors.h"
#include "kwt/strings.h"

namespace settings {
namespace {

constexpr size_t kAddressBytes = 4;
constexpr std::string_view kNoText = "(null)";

}  // namespace

bool QueryBool(session::KestrelSDK& sdk, uint8_t& value, const std::string& request, uint32_t timeoutMs) {
    value = 0;
    std::string& reply = sdk.NewReply();
    if (!sdk.Query(request, reply, timeoutMs)) return false;
    return sdk.parser.GetBoolValue(reply, value) || sdk.RejectReply(reply, SDK_ERROR_BAD_REPLY);
}

bool QueryText(session::KestrelSDK& sdk, WCHAR* text, size_t sizeBytes, const std::string& request,
               uint32_t timeoutMs) {
    *text = 0;
    std::string& reply = sdk.NewReply();
    if (!sdk.Query(request, reply, timeoutMs)) return false;
    std::string value;
    if (!sdk.parser.GetValue(reply, value)) return sdk.RejectReply(reply, SDK_ERROR_BAD_REPLY);
    if (value != kNoText) kwt::AsciiToWideBuffer(text, value.c_str(), sizeBytes);
    return true;
}

bool QueryInt(session::KestrelSDK& sdk, int32_t& value, const std::string& request, uint32_t timeoutMs) {
    value = 0;
    std::string& reply = sdk.NewReply();
    if (!sdk.Query(request, reply, timeoutMs)) return false;
    return sdk.parser.GetIntValue(reply, value) || sdk.RejectReply(reply, SDK_ERROR_BAD_REPLY);
}

bool QueryInt32(session::KestrelSDK& sdk, uint32_t& value, const std::string& request, uint32_t timeoutMs) {
    int32_t number = 0;
    const bool done = QueryInt(sdk, number, request, timeoutMs);
    value = static_cast<uint32_t>(number);
    return done;
}

bool QueryInt16(session::KestrelSDK& sdk, uint16_t& value, const std::string& request, uint32_t timeoutMs) {
    int32_t number = 0;
    const bool done = QueryInt(sdk, number, request, timeoutMs);
    value = static_cast<uint16_t>(number);
    return done;
}

bool QueryInt8(session::KestrelSDK& sdk, uint8_t& value, const std::string& request, uint32_t timeoutMs) {
    int32_t number = 0;
    const bool done = QueryInt(sdk, number, request, timeoutMs);
    value = static_cast<uint8_t>(number);
    return done;
}

bool QueryAddress(session::KestrelSDK& sdk, uint8_t* address, const std::string& request,
                  uint32_t timeoutMs) {
    std::fill_n(address, kAddressBytes, uint8_t{0});
    std::string& reply = sdk.NewReply();
    if (!sdk.Query(request, reply, timeoutMs)) return false;
    std::vector<uint8_t> block;
    if (!sdk.parser.GetBinaryValue(reply, block)) return sdk.RejectReply(reply, SDK_ERROR_BAD_REPLY);
    if (block.size() != kAddressBytes) return sdk.RejectReply(reply, SDK_ERROR_UNEXPECTED_REPLY);
    std::copy(block.begin(), block.end(), address);
    return true;
}

bool QueryEnum(session::KestrelSDK& sdk, uint32_t& value, const catalogue::EnumEntry* table,
               const std::string& request, uint32_t timeoutMs) {
    std::string& reply = sdk.NewReply();
    if (!sdk.Query(request, reply, timeoutMs)) return false;
    std::string word;
    if (!sdk.parser.GetValue(reply, word)) return sdk.RejectReply(reply, SDK_ERROR_BAD_REPLY);
    const catalogue::EnumEntry* const entry = catalogue::FindByName(table, word);
    if (entry == nullptr) return sdk.RejectReply(reply, ERROR_INVALID_PARAMETER);
    value = entry->value;
    return true;
}

bool SetValue(session::KestrelSDK& sdk, const std::string& request, uint32_t timeoutMs) {
    return sdk.SetWithAck(request, timeoutMs);
}

bool SetEnum(session::KestrelSDK& sdk, opl::Key key, const catalogue::EnumEntry* table, uint32_t value,
             uint32_t timeoutMs) {
    const catalogue::EnumEntry* const entry = catalogue::FindByValue(table, value);
    if (entry == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendSetText(request, key, entry->name);
    return SetValue(sdk, request, timeoutMs);
}

}  // namespace settings
