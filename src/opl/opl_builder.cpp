#include "opl/opl_builder.h"

#include <cassert>
#include <charconv>

#include "opl/opl_value.h"

namespace {

void AppendRecordKey(std::string& out, OplRecordList list, uint32_t index, OplRecordField field) {
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

void OPLBuilder::AppendQuery(std::string& out, OplKey key) const {
    assert(KeyRow(key).CanQuery());
    out += KeyText(key);
    out += '?';
}

void OPLBuilder::AppendSetBool(std::string& out, OplKey key, bool value) const {
    out += KeyText(key);
    switch (KeyRow(key).formatter) {
        case OplFormatter::YesNoValue:
            return opl::YesNoValue{value}.AppendTo(out);
        case OplFormatter::TrueFalseValue:
            return opl::TrueFalseValue{value}.AppendTo(out);
        default:
            assert(!"the key takes no boolean");
    }
}

void OPLBuilder::AppendSetInt(std::string& out, OplKey key, int32_t value) const {
    out += KeyText(key);
    switch (KeyRow(key).formatter) {
        case OplFormatter::IntValue:
            return opl::IntValue{value}.AppendTo(out);
        case OplFormatter::ByteValue:
            return opl::ByteValue{static_cast<uint8_t>(value)}.AppendTo(out);
        case OplFormatter::WordValue:
            return opl::WordValue{static_cast<uint16_t>(value)}.AppendTo(out);
        case OplFormatter::SignedByteValue:
            return opl::SignedByteValue{static_cast<int8_t>(value)}.AppendTo(out);
        default:
            assert(!"the key takes no number");
    }
}

void OPLBuilder::AppendSetText(std::string& out, OplKey key, std::string_view text) const {
    assert(KeyRow(key).formatter == OplFormatter::TextValue);
    out += KeyText(key);
    opl::TextValue{text}.AppendTo(out);
}

void OPLBuilder::AppendSetAddress(std::string& out, OplKey key, uint32_t address) const {
    assert(KeyRow(key).formatter == OplFormatter::AddressValue);
    out += KeyText(key);
    opl::AddressValue::FromNumber(address).AppendTo(out);
}

void OPLBuilder::AppendWord(std::string& out, OplWord word) const {
    out += WordText(word);
}

void OPLBuilder::AppendCleanHead(std::string& out, bool thoroughly) const {
    AppendWord(out, thoroughly ? OplWord::CleanHeadThoroughly : OplWord::CleanHead);
}

void OPLBuilder::AppendRecordQuery(std::string& out, OplRecordList list, uint32_t index,
                                   OplRecordField field) const {
    AppendRecordKey(out, list, index, field);
    out += '?';
}

void OPLBuilder::AppendRecordSet(std::string& out, OplRecordList list, uint32_t index, OplRecordField field,
                                 std::string_view text) const {
    AppendRecordKey(out, list, index, field);
    opl::TextValue{text}.AppendTo(out);
}
