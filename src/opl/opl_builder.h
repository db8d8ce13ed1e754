// Builds the request texts of the device language.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "opl/vocabulary.h"

namespace opl {

/// Every operation appends to `out` and never clears it: several calls on one string make one compound
/// request, its commands in the order of the calls. Holds no data; may be shared by any number of threads.
/// Virtual in its end alone, like the other classes of the package.
class OPLBuilder {
  public:
    OPLBuilder() = default;
    virtual ~OPLBuilder();

    /// Key and "?"; the key must be readable.
    void AppendQuery(std::string& out, Key key) const;

    /// Key and value; each operation takes the keys whose row in vocabulary.def names one of its formatters.
    /// YesNoValue, TrueFalseValue
    void AppendSetBool(std::string& out, Key key, bool value) const;
    /// IntValue, ByteValue, WordValue, SignedByteValue: what does not fit the width of the key's formatter
    /// is reduced to its low bits and read again with the formatter's sign (0xF6 becomes -10 or 246).
    void AppendSetInt(std::string& out, Key key, int32_t value) const;
    /// TextValue: `text` is plain; it is escaped here.
    void AppendSetText(std::string& out, Key key, std::string_view text) const;
    /// AddressValue: a.b.c.d is the value whose least significant byte is a.
    void AppendSetAddress(std::string& out, Key key, uint32_t address) const;

    /// A word that stands for itself.
    void AppendWord(std::string& out, Word word) const;

    /// One field of record `index` of an address book list. The index is not checked: the device judges it.
    void AppendRecordQuery(std::string& out, RecordList list, uint32_t index, RecordField field) const;
    void AppendRecordSet(std::string& out, RecordList list, uint32_t index, RecordField field,
                         std::string_view text) const;
};

}  // namespace opl
