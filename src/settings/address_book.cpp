// A record is three fields, each asked for by itself; a whole record is set in one request.
#include "settings/address_book.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "kestrel/sdk_errors.h"
#include "kwt/strings.h"
#include "session/remaining_time.h"
#include "settings/typed_queries.h"

namespace settings {
namespace {

static_assert(sizeof(KestrelQuickDial) == 184 && offsetof(KestrelQuickDial, name) == 4 &&
              offsetof(KestrelQuickDial, address) == 84);

constexpr opl::RecordField kDialFields[] = {opl::RecordField::AddressType, opl::RecordField::Name,
                                            opl::RecordField::Address};

// Unlike a setting's text, the device's word for "no text" is copied as it comes.
bool TakePlainText(session::KestrelSDK& sdk, WCHAR* text, size_t sizeBytes, std::string_view reply) {
    std::string value;
    if (!sdk.parser.GetValue(reply, value)) return sdk.RejectReply(reply, SDK_ERROR_BAD_REPLY);
    kwt::AsciiToWideBuffer(text, value.c_str(), sizeBytes);
    return true;
}

bool ReadField(session::KestrelSDK& sdk, opl::RecordList list, uint32_t index, opl::RecordField field,
               KestrelQuickDial& record, uint32_t timeoutMs) {
    std::string_view reply;
    if (!sdk.Query(list, index, field, reply, timeoutMs)) return false;
    if (field == opl::RecordField::AddressType)
        return TakeEnum(sdk, record.addressType, catalogue::kAddressType, reply);
    return field == opl::RecordField::Name
               ? TakePlainText(sdk, record.name, sizeof(record.name), reply)
               : TakePlainText(sdk, record.address, sizeof(record.address), reply);
}

// A text without a terminator ends with its field.
std::string FieldText(std::span<const WCHAR> field) {
    const WideText text(field.begin(), std::ranges::find(field, WCHAR{0}));
    return kwt::AsciiString(text.c_str()).ToByteString();
}

bool AppendRecord(session::KestrelSDK& sdk, std::string& request, opl::RecordList list, uint32_t index,
                  const KestrelQuickDial& record) {
    const catalogue::EnumEntry* const type =
        catalogue::FindByValue(catalogue::kAddressType, record.addressType);
    if (type == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    sdk.builder.AppendRecordSet(request, list, index, opl::RecordField::AddressType, type->name);
    sdk.builder.AppendRecordSet(request, list, index, opl::RecordField::Name, FieldText(record.name));
    sdk.builder.AppendRecordSet(request, list, index, opl::RecordField::Address, FieldText(record.address));
    return true;
}

}  // namespace

bool GetQuickDialNumbers(session::KestrelSDK& sdk, KestrelQuickDial* records, uint32_t timeoutMs) {
    const session::RemainingTime time(timeoutMs);
    std::fill_n(records, KESTREL_SPEED_DIAL_RECORDS, KestrelQuickDial{});
    for (uint32_t index = 0; index < KESTREL_SPEED_DIAL_RECORDS; ++index) {
        for (const opl::RecordField field : kDialFields) {
            if (!ReadField(sdk, opl::RecordList::SpeedDial, index, field, records[index],
                           time.Milliseconds()))
                return false;
            if (time.Milliseconds() == 0) return false;
        }
    }
    return true;
}

bool GetQuickDialButtons(session::KestrelSDK& sdk, KestrelQuickDial* records, uint32_t timeoutMs) {
    const session::RemainingTime time(timeoutMs);
    std::fill_n(records, KESTREL_ONE_TOUCH_RECORDS, KestrelQuickDial{});
    for (uint32_t index = 0; index < KESTREL_ONE_TOUCH_RECORDS; ++index) {
        if (!GetQuickDialButton(sdk, index, &records[index], time.Milliseconds())) return false;
        if (time.Milliseconds() == 0) return false;
    }
    return true;
}

bool GetQuickDialButton(session::KestrelSDK& sdk, uint32_t index, KestrelQuickDial* record,
                        uint32_t timeoutMs) {
    *record = {};
    return std::ranges::all_of(kDialFields, [&](opl::RecordField field) {
        return ReadField(sdk, opl::RecordList::OneTouch, index, field, *record, timeoutMs);
    });
}

bool SetQuickDialNumbers(session::KestrelSDK& sdk, const KestrelQuickDial* records, uint32_t timeoutMs) {
    std::string& request = sdk.NewRequest();
    for (uint32_t index = 0; index < KESTREL_SPEED_DIAL_RECORDS; ++index) {
        if (!AppendRecord(sdk, request, opl::RecordList::SpeedDial, index, records[index])) return false;
    }
    return SetValue(sdk, request, timeoutMs);
}

bool SetQuickDialButtons(session::KestrelSDK& sdk, const KestrelQuickDial* records, uint32_t timeoutMs) {
    const session::RemainingTime time(timeoutMs);
    for (uint32_t index = 0; index < KESTREL_ONE_TOUCH_RECORDS; ++index) {
        if (!SetQuickDialButton(sdk, index, &records[index], time.Milliseconds())) return false;
        if (time.Milliseconds() == 0) return false;
    }
    return true;
}

bool SetQuickDialButton(session::KestrelSDK& sdk, uint32_t index, const KestrelQuickDial* record,
                        uint32_t timeoutMs) {
    std::string& request = sdk.NewRequest();
    return AppendRecord(sdk, request, opl::RecordList::OneTouch, index, *record) &&
           SetValue(sdk, request, timeoutMs);
}

}  // namespace settings
