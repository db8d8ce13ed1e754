// The keys of the records, put together from their lists and fields.
#include "vprinter/device/address_book.h"

#include <fmt/core.h>

#include <deque>
#include <string>

namespace vprinter {
namespace {

struct EntryField {
    opl::RecordField field;
    ValueKind kind;
    std::string_view initial;
    uint32_t maxLength;
};
constexpr EntryField kEntryFields[] = {
    {opl::RecordField::AddressType, ValueKind::Word, "(null)", 0},
    {opl::RecordField::Name, ValueKind::Text, "", 39},
    {opl::RecordField::Address, ValueKind::Text, "", 49},
};

std::vector<SettingSpec> MakeRecords(std::deque<std::string>& keys) {
    std::vector<SettingSpec> specs;
    for (const AddressList& list : kAddressLists) {
        for (size_t number = 0; number < list.records; ++number) {
            for (const EntryField& field : kEntryFields) {
                SettingSpec spec;
                spec.key = keys.emplace_back(RecordKey(list, number, field.field));
                spec.kind = field.kind;
                spec.writable = true;
                spec.initial = field.initial;
                spec.maxLength = field.maxLength;
                if (field.kind == ValueKind::Word) {
                    for (const AddressType& type : kAddressTypes)
                        spec.words.push_back(type.device);
                }
                specs.push_back(std::move(spec));
            }
        }
    }
    return specs;
}

}  // namespace

std::string RecordKey(const AddressList& list, size_t number, opl::RecordField field) {
    return fmt::format("{}[{}]{}", opl::RecordListText(list.list), number, opl::RecordFieldText(field));
}

void AppendAddressBook(std::vector<SettingSpec>& specs) {
    static std::deque<std::string> keys;  // outlives every model
    static const std::vector<SettingSpec> records = MakeRecords(keys);
    specs.insert(specs.end(), records.begin(), records.end());
}

}  // namespace vprinter
