#include "vprinter/requests/request_reader.h"

#include <charconv>

namespace vprinter {
namespace {

constexpr std::string_view kDelimiters = "&;?";

bool IsKeyByte(char c) {
    return c >= 0x20 && c <= 0x7E;
}

Command Malformed(const char* fault) {
    Command command;
    command.fault = fault;
    return command;
}

}  // namespace

bool RequestReader::Next(Command& command) {
    if (rest_.empty()) return false;
    size_t keyLength = 0;
    while (keyLength < rest_.size() && IsKeyByte(rest_[keyLength]) &&
           std::string_view("=#?;&").find(rest_[keyLength]) == std::string_view::npos) {
        ++keyLength;
    }
    const char end = keyLength < rest_.size() ? rest_[keyLength] : '\0';
    if (keyLength == rest_.size()) {
        command = Malformed("The command has no end");
    } else if (keyLength == 0) {
        command = Malformed("The command has no key");
    } else if (end == '?') {
        command = {CommandKind::Query, rest_.substr(0, keyLength), {}, rest_.substr(0, keyLength + 1)};
    } else if (end == '=') {
        command = ReadValue(keyLength);
    } else if (end == '#') {
        command = ReadBlock(keyLength);
    } else {
        command = Malformed("The key is followed by neither a question nor a value");
    }
    if (command.kind == CommandKind::Malformed) {
        command.text = rest_;
        rest_ = {};
    } else {
        rest_.remove_prefix(command.text.size());
    }
    return true;
}

Command RequestReader::ReadValue(size_t keyLength) const {
    const size_t begin = keyLength + 1;
    const size_t end = rest_.find_first_of(kDelimiters, begin);
    if (end == std::string_view::npos) return Malformed("The value has no end");
    if (rest_[end] == '&') return Malformed("The value holds an ampersand that is not escaped");
    const CommandKind kind = rest_[end] == '?' ? CommandKind::Word : CommandKind::Set;
    return {kind, rest_.substr(0, keyLength), rest_.substr(begin, end - begin), rest_.substr(0, end + 1)};
}

Command RequestReader::ReadBlock(size_t keyLength) const {
    const char* const digits = rest_.data() + keyLength + 1;
    const char* const end = rest_.data() + rest_.size();
    uint32_t count = 0;
    const auto [after, error] = std::from_chars(digits, end, count);
    if (error != std::errc() || after == end || *after != '=') {
        return Malformed("The length of the block is not a number");
    }
    const size_t begin = static_cast<size_t>(after + 1 - rest_.data());
    if (count >= rest_.size() - begin || rest_[begin + count] != ';') {
        return Malformed("The block does not end where its length says");
    }
    return {CommandKind::BinarySet, rest_.substr(0, keyLength), rest_.substr(begin, count),
            rest_.substr(0, begin + count + 1)};
}

}  // namespace vprinter
