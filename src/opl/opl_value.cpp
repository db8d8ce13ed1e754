// Every value part opens with "=" or with a block's length and closes with ";".
#include "opl/opl_value.h"

#include <charconv>

#include "opl/value_escape.h"

namespace opl {

namespace {

void AppendNumber(std::string& out, int32_t number) {
    char scratch[32];
    const auto end = std::to_chars(scratch, scratch + sizeof scratch, number).ptr;
    out.append(scratch, end);
}

void AppendNumberValue(std::string& out, int32_t number) {
    out += '=';
    AppendNumber(out, number);
    out += ';';
}

}  // namespace

void YesNoValue::AppendTo(std::string& out) const {
    out += value ? "=YES;" : "=NO;";
}

void TrueFalseValue::AppendTo(std::string& out) const {
    out += value ? "=TRUE;" : "=FALSE;";
}

void IntValue::AppendTo(std::string& out) const {
    AppendNumberValue(out, value);
}

void ByteValue::AppendTo(std::string& out) const {
    AppendNumberValue(out, value);
}

void WordValue::AppendTo(std::string& out) const {
    AppendNumberValue(out, value);
}

void SignedByteValue::AppendTo(std::string& out) const {
    AppendNumberValue(out, value);
}

void TextValue::AppendTo(std::string& out) const {
    out += '=';
    AppendEscaped(out, value);
    out += ';';
}

void AddressValue::AppendTo(std::string& out) const {
    out += '#';
    AppendNumber(out, static_cast<int32_t>(bytes.size()));
    out += '=';
    out.append(bytes.data(), bytes.size());
    out += ';';
}

}  // namespace opl
