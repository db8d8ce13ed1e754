// The records of the address book as people write them, alone and as files.
#pragma once

#include <kestrel/sdk_types.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "kestrel/printer/library.h"
#include "shared/json.h"

namespace cli {

struct AddressList final {
    std::string_view name;
    size_t records;
    const char* getter;
    const char* setter;
    const char* recordSetter;  // none: a record can only be written with the whole list
};
inline constexpr std::array<AddressList, 2> kAddressLists = {{
    {"speed-dial", KESTREL_SPEED_DIAL_RECORDS, "GetQuickDialNumbers", "SetQuickDialNumbers", nullptr},
    {"one-touch", KESTREL_ONE_TOUCH_RECORDS, "GetQuickDialButtons", "SetQuickDialButtons",
     "SetQuickDialButton"},
}};
[[nodiscard]] const AddressList& FindAddressList(std::string_view name);

// A list takes three exchanges a record: the time of one exchange stands for each of them.
[[nodiscard]] uint32_t ListTimeout(const AddressList& list, uint32_t timeoutMs);
inline constexpr CodelessFailure kListOutOfTime = {ExitCode::NoAnswer, "the time for the whole list ran out",
                                                   "allow more time with --timeout"};
// Throws the Failure of the library's call.
[[nodiscard]] std::vector<KestrelQuickDial> ReadAddressList(const Library& library, const AddressList& list,
                                                            uint32_t timeoutMs);

// By the numbers of KestrelAddressType.
inline constexpr std::array<std::string_view, 3> kAddressTypes = {"none", "fax", "email"};

// A record as people write it.
struct AddressEntry final {
    std::string type;  // one of kAddressTypes
    std::string name;
    std::string address;
};

// The printer writes "(null)" for a text that it does not have; that counts as empty.
[[nodiscard]] AddressEntry EntryFrom(const KestrelQuickDial& record);
[[nodiscard]] bool IsEmpty(const KestrelQuickDial& record);
// Of the records in use: number, type, name, address.
[[nodiscard]] tools::Json EntriesJson(const std::vector<KestrelQuickDial>& records);

// Throws a value failure for an unknown type, a text that is too long, or one that the code page lacks.
[[nodiscard]] KestrelQuickDial RecordFrom(const AddressEntry& entry);

// Lines number,type,name,address under a heading; empty records are left out.
[[nodiscard]] std::string CsvFromRecords(const std::vector<KestrelQuickDial>& records);

// Reads the same back, with or without the heading; a whole list, empty where the file says nothing. Throws a
// value failure that names the row.
[[nodiscard]] std::vector<KestrelQuickDial> RecordsFromCsv(std::string_view text, const AddressList& list);

}  // namespace cli
