// The printer's address book: 60 speed-dial and 5 one-touch records, each field of them a value with a key of
// its own.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/value_tables.h"
#include "vprinter/device/setting_spec.h"

namespace vprinter {

struct AddressList {
    std::string_view name;  // of `kestrel --json`
    opl::RecordList list;
    size_t records;
};
inline constexpr AddressList kAddressLists[] = {{"speed-dial", opl::RecordList::SpeedDial, 60},
                                                {"one-touch", opl::RecordList::OneTouch, 5}};

struct AddressType {
    std::string_view word;    // of `kestrel --json`
    std::string_view device;  // of the printer
};
inline constexpr AddressType kAddressTypes[] = {{"none", catalogue::kAddressType[0].name},
                                                {"fax", catalogue::kAddressType[1].name},
                                                {"email", catalogue::kAddressType[2].name}};

/// Of a field of the record of this number, from 0 on.
[[nodiscard]] std::string RecordKey(const AddressList& list, size_t number, opl::RecordField field);

void AppendAddressBook(std::vector<SettingSpec>& specs);

}  // namespace vprinter
