// The keys of the records, put together from their lists and fields.
#include "vprinter/device/address_book.h"

#include <fmt/core.h>

#include <deque>
#include <string>

#include "catalogue/value_tables.h"

namespace vprinter {
namespace {

struct List {
    opl::RecordList list;
    int records;
};
constexpr List kLists[] = {{opl::RecordList::SpeedDial, 60}, {opl::RecordList::OneTouch, 5}};

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
    for (const List& list : kLists) {
        for (int index = 0; index < list.records; ++index) {
            for (const EntryField& field : kEntryFields) {
                SettingSpec spec;
                spec.key = keys.emplace_back(fmt::format("{}[{}]{}", opl::RecordListText(list.list), index,
                                                         opl::RecordFieldText(field.field)));
                spec.kind = field.kind;
                spec.writable = true;
                spec.initial = field.initial;
                spec.maxLength = field.maxLength;
                if (field.kind == ValueKind::Word) {
                    for (const catalogue::EnumEntry* word = catalogue::kAddressType; word->name != nullptr;
                         ++word)
                        spec.words.push_back(word->name);
                }
                specs.push_back(std::move(spec));
            }
        }
    }
    return specs;
}

}  // namespace

void AppendAddressBook(std::vector<SettingSpec>& specs) {
    static std::deque<std::string> keys;  // outlives every model
    static const std::vector<SettingSpec> records = MakeRecords(keys);
    specs.insert(specs.end(), records.begin(), records.end());
}

}  // namespace vprinter
