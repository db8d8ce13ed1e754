// The library's fixed fields against the texts that people write.
#include "kestrel/printer/address_book.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <iterator>

#include "kestrel/failure.h"
#include "kestrel/text/csv.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

constexpr std::string_view kNoText = "(null)";
CsvRow Heading() {
    return {"number", "type", "name", "address"};
}

template <size_t units>
std::string Field(const kestrel_char (&field)[units]) {
    const std::basic_string_view<WCHAR> whole(field, units);
    const std::string text = Utf8FromWide(whole.substr(0, std::min(whole.find(WCHAR{}), units)));
    return text == kNoText ? std::string() : text;
}

template <size_t units>
void SetField(kestrel_char (&field)[units], const std::string& text, const char* what) {
    const WideText wide = WideArgument(text, what);
    if (wide.size() >= units) {
        throw ValueFailure(fmt::format("the {} \"{}\" is too long", what, text),
                           fmt::format("write at most {} characters", units - 1));
    }
    // Control codes carry the command language's own characters on the wire and would come back as those.
    if (!AnsiFromWide(wide) || ForTerminal(text) != text) {
        throw ValueFailure(
            fmt::format("the {} \"{}\" has characters that the printer cannot take", what, text),
            "write it with the characters of the system's code page, without control characters");
    }
    std::copy(wide.begin(), wide.end(), std::begin(field));
}

size_t RecordNumber(const std::string& written, size_t row, const AddressList& list) {
    size_t number = 0;
    const char* const end = written.data() + written.size();
    const auto [stop, error] = std::from_chars(written.data(), end, number);
    if (error != std::errc() || stop != end || number >= list.records) {
        throw ValueFailure(fmt::format("row {}: \"{}\" is no record of the {} list", row, written, list.name),
                           fmt::format("write a number from 0 to {}", list.records - 1));
    }
    return number;
}

}  // namespace

const AddressList& FindAddressList(std::string_view name) {
    for (const AddressList& list : kAddressLists) {
        if (list.name == name) return list;
    }
    throw UsageFailure(fmt::format("there is no list \"{}\"", name), "choose speed-dial or one-touch");
}

uint32_t ListTimeout(const AddressList& list, uint32_t timeoutMs) {
    constexpr uint64_t kLongest = 600000;
    const uint64_t whole = uint64_t{timeoutMs} * list.records;
    return static_cast<uint32_t>(std::min(whole, std::max<uint64_t>(kLongest, timeoutMs)));
}

std::vector<KestrelQuickDial> ReadAddressList(const Library& library, const AddressList& list,
                                              uint32_t timeoutMs) {
    std::vector<KestrelQuickDial> records(list.records);
    Demand<kestrel_bool(KestrelQuickDial*, uint32_t)>(
        library, list.getter,
        {fmt::format("cannot read the {} list", list.name), Exchange::Read, kListOutOfTime}, records.data(),
        ListTimeout(list, timeoutMs));
    return records;
}

tools::Json EntriesJson(const std::vector<KestrelQuickDial>& records) {
    tools::Json entries = tools::Json::EmptyArray();
    for (size_t i = 0; i < records.size(); ++i) {
        if (IsEmpty(records[i])) continue;
        const AddressEntry entry = EntryFrom(records[i]);
        entries.Append(
            {{"number", i}, {"type", entry.type}, {"name", entry.name}, {"address", entry.address}});
    }
    return entries;
}

AddressEntry EntryFrom(const KestrelQuickDial& record) {
    const std::string type = record.addressType < kAddressTypes.size()
                                 ? std::string(kAddressTypes[record.addressType])
                                 : std::to_string(record.addressType);
    return {type, Field(record.name), Field(record.address)};
}

bool IsEmpty(const KestrelQuickDial& record) {
    return record.addressType == KESTREL_ADDRESS_TYPE_NONE && Field(record.name).empty() &&
           Field(record.address).empty();
}

KestrelQuickDial RecordFrom(const AddressEntry& entry) {
    const auto type = std::find(kAddressTypes.begin(), kAddressTypes.end(), LowerAscii(entry.type));
    if (type == kAddressTypes.end()) {
        throw ValueFailure(fmt::format("\"{}\" is no type of address", entry.type),
                           "choose none, fax or email");
    }
    KestrelQuickDial record{};
    record.addressType = static_cast<uint32_t>(type - kAddressTypes.begin());
    SetField(record.name, entry.name, "name");
    SetField(record.address, entry.address, "address");
    return record;
}

std::string CsvFromRecords(const std::vector<KestrelQuickDial>& records) {
    std::string text = CsvLine(Heading());
    for (size_t i = 0; i < records.size(); ++i) {
        if (IsEmpty(records[i])) continue;
        const AddressEntry entry = EntryFrom(records[i]);
        text += CsvLine({std::to_string(i), entry.type, entry.name, entry.address});
    }
    return text;
}

std::vector<KestrelQuickDial> RecordsFromCsv(std::string_view text, const AddressList& list) {
    std::vector<KestrelQuickDial> records(list.records);
    std::vector<bool> named(list.records);
    size_t rowNumber = 0;
    for (const CsvRow& row : ParseCsv(text)) {
        ++rowNumber;
        if (rowNumber == 1 && row == Heading()) continue;
        if (row.size() != Heading().size()) {
            throw ValueFailure(fmt::format("row {} has {} fields", rowNumber, row.size()),
                               "write number,type,name,address");
        }
        const size_t number = RecordNumber(row[0], rowNumber, list);
        if (named[number]) {
            throw ValueFailure(fmt::format("row {} names record {} a second time", rowNumber, number),
                               "leave one of the two rows out");
        }
        named[number] = true;
        try {
            records[number] = RecordFrom({row[1], row[2], row[3]});
        } catch (Failure& failure) {
            failure.text = fmt::format("row {}: {}", rowNumber, failure.text);
            throw;
        }
    }
    return records;
}

}  // namespace cli
