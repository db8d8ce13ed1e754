#include "vprinter/device/setting_spec.h"

#include "catalogue/rows.h"
#include "vprinter/device/address_book.h"
#include "vprinter/device/condition.h"
#include "vprinter/device/facts.h"

namespace vprinter {
namespace {

constexpr uint32_t kMaxOtherText = 64;

ValueKind KindOf(catalogue::Type type) {
    switch (type) {
        case catalogue::Type::Bool:
            return ValueKind::Flag;
        case catalogue::Type::Enum:
            return ValueKind::Word;
        case catalogue::Type::Text:
            return ValueKind::Text;
        case catalogue::Type::Address:
            return ValueKind::Address;
        default:
            return ValueKind::Number;
    }
}

ValueKind KindOf(opl::Formatter formatter, const DeviceFact& fact) {
    switch (formatter) {
        case opl::Formatter::YesNoValue:
            return ValueKind::Flag;
        case opl::Formatter::TextValue:
            return ValueKind::Text;
        case opl::Formatter::AddressValue:
            return ValueKind::Address;
        case opl::Formatter::None:
            if (fact.initial == "YES" || fact.initial == "NO") return ValueKind::Flag;
            return fact.lowest < fact.highest ? ValueKind::Number : ValueKind::Text;
        default:
            return ValueKind::Number;
    }
}

SettingSpec SpecOf(const catalogue::Row& row) {
    SettingSpec spec;
    spec.id = row.id;
    spec.key = row.key;
    spec.kind = KindOf(row.readType);
    spec.readable = row.CanRead();
    spec.writable = row.CanWrite();
    spec.live = row.access == catalogue::Access::Command;
    for (const catalogue::EnumEntry& entry : row.words)
        spec.words.push_back(entry.name);
    spec.maxLength = row.MaxCharacters();
    spec.lowest = row.lowest;
    spec.highest = row.highest;
    spec.initial = row.initial;
    return spec;
}

SettingSpec SpecOf(const DeviceFact& fact) {
    const opl::KeyRow& row = opl::RowOf(fact.key);
    SettingSpec spec;
    spec.id = fact.key;
    spec.key = row.text;
    spec.kind = KindOf(row.formatter, fact);
    spec.readable = row.CanQuery();
    spec.writable = row.CanSet();
    spec.live = fact.live;
    spec.maxLength = kMaxOtherText;
    spec.lowest = fact.lowest;
    spec.highest = fact.highest;
    spec.initial = fact.initial;
    return spec;
}

}  // namespace

std::vector<SettingSpec> PrinterSettings() {
    std::vector<SettingSpec> specs;
    for (const catalogue::Row& row : catalogue::Rows())
        if (row.id) specs.push_back(SpecOf(row));
    for (const DeviceFact& fact : DeviceFacts())
        specs.push_back(SpecOf(fact));
    AppendAddressBook(specs);
    AppendConditions(specs);
    return specs;
}

}  // namespace vprinter
