#include "vprinter/device/setting_spec.h"

#include <algorithm>

#include "settings/catalogue.h"
#include "vprinter/device/address_book.h"
#include "vprinter/device/condition.h"
#include "vprinter/device/facts.h"

namespace vprinter {
namespace {

constexpr uint32_t kMaxOtherText = 64;

ValueKind KindOf(SettingType type) {
    switch (type) {
        case SettingType::kBool:
            return ValueKind::Flag;
        case SettingType::kEnum:
            return ValueKind::Word;
        case SettingType::kText:
            return ValueKind::Text;
        case SettingType::kAddress:
            return ValueKind::Address;
        default:
            return ValueKind::Number;
    }
}

/// For keys that are no setting of their own on the product's side.
ValueKind KindOf(OplFormatter formatter, const DeviceFact& fact) {
    switch (formatter) {
        case OplFormatter::YesNoValue:
            return ValueKind::Flag;
        case OplFormatter::TextValue:
            return ValueKind::Text;
        case OplFormatter::AddressValue:
            return ValueKind::Address;
        case OplFormatter::None:
            if (fact.initial == "YES" || fact.initial == "NO") return ValueKind::Flag;
            return fact.lowest < fact.highest ? ValueKind::Number : ValueKind::Text;
        default:
            return ValueKind::Number;
    }
}

SettingSpec MakeSpec(const DeviceFact& fact) {
    const OplKeyRow& row = KeyRow(fact.key);
    SettingSpec spec;
    spec.id = fact.key;
    spec.key = row.text;
    spec.readable = row.CanQuery();
    spec.writable = row.CanSet();
    spec.live = fact.live;
    spec.initial = fact.initial;
    spec.lowest = fact.lowest;
    spec.highest = fact.highest;
    const std::span<const SettingRow> catalogue = Catalogue();
    const auto product = std::ranges::find(catalogue, row.text, &SettingRow::key);
    if (product == catalogue.end()) {
        spec.kind = KindOf(row.formatter, fact);
        spec.maxLength = kMaxOtherText;
        return spec;
    }
    spec.kind = KindOf(product->type);
    spec.maxLength = product->bufferBytes / 2 - 1;
    for (const EnumEntry& entry : product->words)
        spec.words.push_back(entry.name);
    return spec;
}

}  // namespace

std::vector<SettingSpec> PrinterSettings() {
    std::vector<SettingSpec> specs;
    for (const DeviceFact& fact : DeviceFacts()) {
        specs.push_back(MakeSpec(fact));
    }
    AppendAddressBook(specs);
    AppendConditions(specs);
    return specs;
}

}  // namespace vprinter
