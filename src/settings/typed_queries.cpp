// Each query is the exchange and one extraction; each setter one value part and the exchange.
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

bool QueryBool(session::KestrelSDK& sdk, uint8_t& value, opl::Key key, uint32_t timeoutMs) {
    value = 0;
    std::string_view reply;
    if (!sdk.Query(key, reply, timeoutMs)) return false;
    return sdk.parser.GetBoolValue(reply, value) || sdk.RejectReply(reply, SDK_ERROR_BAD_REPLY);
}

bool QueryText(session::KestrelSDK& sdk, WCHAR* text, size_t sizeBytes, opl::Key key, uint32_t timeoutMs) {
    *text = 0;
    std::string_view reply;
    return sdk.Query(key, reply, timeoutMs) && TakeText(sdk, text, sizeBytes, reply);
}

bool QueryInt(session::KestrelSDK& sdk, int32_t& value, opl::Key key, uint32_t timeoutMs) {
    value = 0;
    std::string_view reply;
    if (!sdk.Query(key, reply, timeoutMs)) return false;
    return sdk.parser.GetIntValue(reply, value) || sdk.RejectReply(reply, SDK_ERROR_BAD_REPLY);
}

bool QueryInt32(session::KestrelSDK& sdk, uint32_t& value, opl::Key key, uint32_t timeoutMs) {
    int32_t number = 0;
    const bool done = QueryInt(sdk, number, key, timeoutMs);
    value = static_cast<uint32_t>(number);
    return done;
}

bool QueryInt16(session::KestrelSDK& sdk, uint16_t& value, opl::Key key, uint32_t timeoutMs) {
    int32_t number = 0;
    const bool done = QueryInt(sdk, number, key, timeoutMs);
    value = static_cast<uint16_t>(number);
    return done;
}

bool QueryInt8(session::KestrelSDK& sdk, uint8_t& value, opl::Key key, uint32_t timeoutMs) {
    int32_t number = 0;
    const bool done = QueryInt(sdk, number, key, timeoutMs);
    value = static_cast<uint8_t>(number);
    return done;
}

bool QueryAddress(session::KestrelSDK& sdk, uint8_t* address, opl::Key key, uint32_t timeoutMs) {
    std::fill_n(address, kAddressBytes, uint8_t{0});
    std::string_view reply;
    if (!sdk.Query(key, reply, timeoutMs)) return false;
    std::vector<uint8_t> block;
    if (!sdk.parser.GetBinaryValue(reply, block)) return sdk.RejectReply(reply, SDK_ERROR_BAD_REPLY);
    if (block.size() != kAddressBytes) return sdk.RejectReply(reply, SDK_ERROR_UNEXPECTED_REPLY);
    std::copy(block.begin(), block.end(), address);
    return true;
}

bool QueryEnum(session::KestrelSDK& sdk, uint32_t& value, const catalogue::EnumEntry* table, opl::Key key,
               uint32_t timeoutMs) {
    std::string_view reply;
    return sdk.Query(key, reply, timeoutMs) && TakeEnum(sdk, value, table, reply);
}

bool TakeText(session::KestrelSDK& sdk, WCHAR* text, size_t sizeBytes, std::string_view reply) {
    std::string value;
    if (!sdk.parser.GetValue(reply, value)) return sdk.RejectReply(reply, SDK_ERROR_BAD_REPLY);
    if (value == kNoText)
        *text = 0;
    else
        kwt::AsciiToWideBuffer(text, value.c_str(), sizeBytes);
    return true;
}

bool TakeEnum(session::KestrelSDK& sdk, uint32_t& value, const catalogue::EnumEntry* table,
              std::string_view reply) {
    std::string word;
    if (!sdk.parser.GetValue(reply, word)) return sdk.RejectReply(reply, SDK_ERROR_BAD_REPLY);
    const catalogue::EnumEntry* const entry = catalogue::FindByName(table, word);
    if (entry == nullptr) return sdk.RejectReply(reply, ERROR_INVALID_PARAMETER);
    value = entry->value;
    return true;
}

bool SetBool(session::KestrelSDK& sdk, opl::Key key, bool value, uint32_t timeoutMs) {
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendSetBool(request, key, value);
    return sdk.SetWithAck(request, timeoutMs);
}

bool SetInt(session::KestrelSDK& sdk, opl::Key key, int32_t value, uint32_t timeoutMs) {
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendSetInt(request, key, value);
    return sdk.SetWithAck(request, timeoutMs);
}

bool SetText(session::KestrelSDK& sdk, opl::Key key, std::string_view text, uint32_t timeoutMs) {
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendSetText(request, key, text);
    return sdk.SetWithAck(request, timeoutMs);
}

bool SetAddress(session::KestrelSDK& sdk, opl::Key key, uint32_t address, uint32_t timeoutMs) {
    std::string& request = sdk.NewRequest();
    sdk.builder.AppendSetAddress(request, key, address);
    return sdk.SetWithAck(request, timeoutMs);
}

bool SetEnum(session::KestrelSDK& sdk, opl::Key key, const catalogue::EnumEntry* table, uint32_t value,
             uint32_t timeoutMs) {
    const catalogue::EnumEntry* const entry = catalogue::FindByValue(table, value);
    if (entry != nullptr) return SetText(sdk, key, entry->name, timeoutMs);
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
}

bool SetValue(session::KestrelSDK& sdk, std::string_view request, uint32_t timeoutMs) {
    return sdk.SetWithAck(request, timeoutMs);
}

}  // namespace settings
