// The address book and the access points.
#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <iterator>

#include "opl/readable_text.h"
#include "opl/vocabulary.h"
#include "vprinter/api/refusal.h"
#include "vprinter/api/views.h"
#include "vprinter/device/address_book.h"
#include "vprinter/files/byte_text.h"

namespace vprinter::api {
namespace {

Setting* RecordSetting(DeviceModel& model, const AddressList& list, size_t number, opl::RecordField field) {
    return model.Find(RecordKey(list, number, field));
}

tools::Json RecordView(DeviceModel& model, const AddressList& list, size_t number) {
    const auto text = [&](opl::RecordField field) {
        return RecordSetting(model, list, number, field)->value;
    };
    const auto* const type =
        std::ranges::find(kAddressTypes, text(opl::RecordField::AddressType), &AddressType::device);
    return {{"number", number},
            {"type", type->word},
            {"name", ToUtf8(text(opl::RecordField::Name))},
            {"address", ToUtf8(text(opl::RecordField::Address))}};
}

bool IsInUse(const tools::Json& record) {
    return record.At("type") != "none" || record.At("name") != "" || record.At("address") != "";
}

std::string AddressText(std::string_view address) {
    std::string text;
    for (const char part : address) {
        if (!text.empty()) text += ':';
        opl::AppendHexByte(text, part);
    }
    return text;
}

}  // namespace

tools::Json AddressBook(const PrinterParts& printer, const Call&) {
    tools::Json book = tools::Json::EmptyObject();
    for (const AddressList& list : kAddressLists) {
        tools::Json& records = book[list.name] = tools::Json::EmptyArray();
        for (size_t number = 0; number < list.records; ++number) {
            tools::Json record = RecordView(printer.model, list, number);
            if (IsInUse(record)) records.Append(std::move(record));
        }
    }
    return book;
}

tools::Json ChangeRecord(const PrinterParts& printer, const Call& call) {
    const auto* const list = std::ranges::find(kAddressLists, call.arguments[0], &AddressList::name);
    const std::string& digits = call.arguments[1];
    size_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isNumber = error == std::errc() && end == digits.data() + digits.size();
    const auto field = [&](opl::RecordField which) {
        return RecordSetting(printer.model, *list, number, which);
    };
    if (list == std::end(kAddressLists) || !isNumber || field(opl::RecordField::Name) == nullptr)
        throw Refusal(404, "there is no such record", "speed-dial has records 0 to 59, one-touch 0 to 4");
    const auto* const type =
        std::ranges::find(kAddressTypes, call.body.At("type").Text(), &AddressType::word);
    if (type == std::end(kAddressTypes))
        throw Refusal(422, "there is no such type", "send none, fax or email");

    // All of it is judged before any of it is set.
    struct Change {
        Setting* setting;
        std::string text;
    };
    Change changes[] = {{field(opl::RecordField::AddressType), std::string(type->device)},
                        {field(opl::RecordField::Name), {}},
                        {field(opl::RecordField::Address), {}}};
    changes[1].text = TextFor(*changes[1].setting, call.body.At("name"));
    changes[2].text = TextFor(*changes[2].setting, call.body.At("address"));
    for (const Change& change : changes) {
        const std::string problem = DeviceModel::Check(*change.setting, change.text);
        if (!problem.empty()) throw Refusal(422, "the record is not taken", problem);
    }
    for (const Change& change : changes)
        Take(printer, *change.setting, change.text);
    return RecordView(printer.model, *list, number);
}

tools::Json AccessPoints(const PrinterParts& printer, const Call&) {
    tools::Json points = tools::Json::EmptyArray();
    for (const AccessPoint& point : printer.responder.Device().Network().AccessPoints()) {
        points.Append({{"ssid", ToUtf8(point.name)},
                       {"macAddress", AddressText(point.address)},
                       {"channel", point.channel},
                       {"signalStrength", point.signalStrength},
                       {"beaconInterval", point.beaconInterval},
                       {"capabilities", point.capabilities},
                       {"encryption", point.encryption}});
    }
    return {{"accessPoints", points}};
}

tools::Json SearchAccessPoints(const PrinterParts& printer, const Call&) {
    printer.responder.Device().Network().Search();
    return {{"seconds", printer.model.Number("search.seconds")}};
}

}  // namespace vprinter::api
