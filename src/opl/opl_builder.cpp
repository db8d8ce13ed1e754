// Requests are keys of the vocabulary with a value part behind them.
#include "opl/opl_builder.h"

#include <cassert>
#include <charconv>

#include "opl/opl_value.h"

namespace opl {
namespace {

void AppendRecordKey(std::string& out, RecordList list, uint32_t index, RecordField field) {
    char scratch[32];
    const auto end = std::to_chars(scratch, scratch + sizeof scratch, static_cast<int32_t>(index)).ptr;
    out += RecordListText(list);
    out += '[';
    out.append(scratch, end);
    out += ']';
    out += RecordFieldText(field);
}

}  // namespace

OPLBuilder::~OPLBuilder() = default;

void OPLBuilder::AppendQuery(std::string& out, Key key) const {
    assert(RowOf(key).CanQuery());
    out += KeyText(key);
    out += '?';
}

void OPLBuilder::AppendSetBool(std::string& out, Key key, bool value) const {
    out += KeyText(key);
    switch (RowOf(key).formatter) {
        case Formatter::YesNoValue:
            return YesNoValue{value}.AppendTo(out);
        case Formatter::TrueFalseValue:
            return TrueFalseValue{value}.AppendTo(out);
        default:
            assert(!"the key takes no boolean");
    }
}

void OPLBuilder::AppendSetInt(std::string& out, Key key, int32_t value) const {
    out += KeyText(key);
    switch (RowOf(key).formatter) {
        case Formatter::IntValue:
            return IntValue{value}.AppendTo(out);
        case Formatter::ByteValue:
            return ByteValue{static_cast<uint8_t>(value)}.AppendTo(out);
        case Formatter::WordValue:
            return WordValue{static_cast<uint16_t>(value)}.AppendTo(out);
        case Formatter::SignedByteValue:
            return SignedByteValue{static_cast<int8_t>(value)}.AppendTo(out);
        default:
            assert(!"the key takes no number");
    }
}

void OPLBuilder::AppendSetText(std::string& out, Key key, std::string_view text) const {
    assert(RowOf(key).formatter == Formatter::TextValue);
    out += KeyText(key);
    TextValue{text}.AppendTo(out);
}

void OPLBuilder::AppendSetAddress(std::string& out, Key key, uint32_t address) const {
    assert(RowOf(key).formatter == Formatter::AddressValue);
    out += KeyText(key);
    AddressValue::FromNumber(address).AppendTo(out);
}

void OPLBuilder::AppendWord(std::string& out, Word word) const {
    out += WordText(word);
}

void OPLBuilder::AppendRecordQuery(std::string& out, RecordList list, uint32_t index,
                                   RecordField field) const {
    AppendRecordKey(out, list, index, field);
    out += '?';
}

void OPLBuilder::AppendRecordSet(std::string& out, RecordList list, uint32_t index, RecordField field,
                                 std::string_view text) const {
    AppendRecordKey(out, list, index, field);
    TextValue{text}.AppendTo(out);
}

}  // namespace opl
