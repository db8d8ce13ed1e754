// The framer. Its steps only move the input offset; bytes reach the buffer in one copy per message, or
// earlier where a decision needs to look back over input boundaries.
#include "opl/opl_parser.h"

#include <algorithm>
#include <cstring>

#include "opl/byte_scan.h"
#include "opl/decimal.h"

namespace opl {
namespace {

constexpr auto kUnprintable = [](auto byte) { return byte < ' ' || byte > '~'; };
constexpr auto kEndsKey = [](auto byte) {
    return byte == ',' || byte == '=' || byte == '#' || byte == '?' || byte == ';' || kUnprintable(byte);
};
/// Whatever can end a run of plain items: neither the bytes between items nor those between key and value.
constexpr auto kEndsItems = [](auto byte) { return (byte | 4) == '?' || byte == '#' || kUnprintable(byte); };
constexpr auto kSemicolon = [](auto byte) { return byte == ';'; };
constexpr auto kEqualsSign = [](auto byte) { return byte == '='; };
constexpr auto kItemStructure = [](auto byte) { return byte == '=' || byte == '&'; };

constexpr size_t kMaxLengthDigits = 15;
constexpr size_t kErrorNumberLength = 5;

bool IsErrorNumber(std::string_view opening) {
    return opening == "3400," || opening == "3401,";
}

template <typename Matches>
size_t FindIn(std::string_view text, Matches matches) {
    return FindFirst(text.data(), text.size(), matches);
}

}  // namespace

OPLParser::~OPLParser() = default;

ParseResult OPLParser::ParseStream(const char* input, uint32_t length, const char*& message,
                                   uint32_t& messageLength) {
    message = nullptr;
    messageLength = 0;
    if (messageReady_) {
        bufferLength_ = binaryLength_ = binaryRemaining_ = 0;
        messageReady_ = false;
    }
    if (input != input_) {
        input_ = input;
        inputLength_ = length;
        inputOffset_ = 0;
    }

    while (state_ != State::Error && !messageReady_ &&
           (state_ == State::Complete || inputOffset_ < inputLength_)) {
        Step();
    }
    CopyConsumed();

    if (state_ == State::Error) return ParseResult::Malformed;
    if (messageReady_) {
        message = buffer_;
        messageLength = bufferLength_;
        return ParseResult::MessageReady;
    }
    input_ = nullptr;
    return ParseResult::MoreInput;
}

void OPLParser::Step() {
    switch (state_) {
        case State::ReadKey:
            return ReadKey();
        case State::ReadLength:
            return ReadLength();
        case State::ReadBinary:
            return ReadBinary();
        case State::ReadValue:
            return ReadValue();
        case State::ReadErrorText:
            return ReadErrorText();
        case State::Complete:
            CopyConsumed();
            if (state_ == State::Error) return;
            messageReady_ = true;
            state_ = State::ReadKey;
            return;
        case State::Error:
            return;
    }
}

// Most messages are plain items and nothing else: one pass finds the end. Whether that lies in a key or in a
// value makes no difference then; only an error text reads on beyond a "?".
bool OPLParser::PassPlainItems() {
    const std::string_view rest = RemainingInput();
    const uint32_t before = bufferLength_ + uncopied_;
    if (before < kErrorNumberLength &&
        (before != 0 || (rest.front() == '3' && IsErrorNumber(rest.substr(0, kErrorNumberLength)))))
        return false;
    const size_t end = FindFarFirst(rest.data(), rest.size(), kEndsItems);
    if (end == rest.size() || (rest[end] != ';' && rest[end] != '?')) return false;
    Consume(end + 1);
    state_ = State::Complete;
    return true;
}

void OPLParser::ReadKey() {
    if (PassPlainItems()) return;
    const std::string_view rest = RemainingInput();
    const size_t end = FindIn(rest, kEndsKey);
    if (end == rest.size()) return Consume(end);
    Consume(end + 1);
    switch (rest[end]) {
        case '#':
            state_ = State::ReadLength;
            return;
        case '=':
            state_ = State::ReadValue;
            return;
        case '?':
        case ';':
            state_ = State::Complete;
            return;
        case ',':
            if (OpensErrorText()) state_ = State::ReadErrorText;
            return;
        default:
            state_ = State::Error;
            return;
    }
}

/// Whether the comma just read closed one of the numbers that open an error text.
bool OPLParser::OpensErrorText() {
    if (bufferLength_ + uncopied_ != kErrorNumberLength) return false;
    if (bufferLength_ == 0) return IsErrorNumber({input_ + inputOffset_ - uncopied_, kErrorNumberLength});
    CopyConsumed();
    return IsErrorNumber({buffer_, kErrorNumberLength});
}

void OPLParser::ReadLength() {
    const std::string_view rest = RemainingInput();
    const size_t end = FindIn(rest, kEqualsSign);
    if (end == rest.size()) return Consume(end);
    Consume(end + 1);
    CopyConsumed();
    if (state_ == State::Error) return;

    const std::string_view message(buffer_, bufferLength_ - 1);
    const size_t window = std::min(message.size(), kMaxLengthDigits + 1);
    const std::string_view tail = message.substr(message.size() - window);
    const size_t sign = tail.rfind('#');
    if (sign == std::string_view::npos) {
        state_ = State::Error;
        return;
    }
    binaryLength_ = binaryRemaining_ = LeadingCount(tail.substr(sign + 1));
    state_ = State::ReadBinary;
}

void OPLParser::ReadBinary() {
    const auto count = std::min<size_t>(RemainingInput().size(), binaryRemaining_);
    Consume(count);
    binaryRemaining_ -= static_cast<uint32_t>(count);
    if (binaryRemaining_ == 0) state_ = State::ReadValue;
}

// Most of a long reply is plain items. They are passed in one go up to the first byte that can be of
// consequence; whether that one lies in a key or a value is decided by the last "=" or "&" before it: behind
// "=" there is a value and behind "&" a key, whatever the item before.
void OPLParser::ReadValue() {
    const std::string_view rest = RemainingInput();
    const size_t items = FindFarFirst(rest.data(), rest.size(), kEndsItems);
    const size_t last = FindLast(rest.data(), items, kItemStructure);
    if (last < items && rest[last] == '&') {
        state_ = State::ReadKey;
        return Consume(last + 1);
    }
    const size_t end = items + FindIn(rest.substr(items), kDelimiter);
    if (end == rest.size()) return Consume(end);
    state_ = rest[end] == '&' ? State::ReadKey : State::Complete;
    Consume(end + 1);
}

void OPLParser::ReadErrorText() {
    const std::string_view rest = RemainingInput();
    const size_t end = FindIn(rest, kSemicolon);
    if (end == rest.size()) return Consume(end);
    Consume(end + 1);
    state_ = State::Complete;
}

std::string_view OPLParser::RemainingInput() const {
    return {input_ + inputOffset_, inputLength_ - inputOffset_};
}

void OPLParser::Consume(size_t count) {
    inputOffset_ += static_cast<uint32_t>(count);
    uncopied_ += static_cast<uint32_t>(count);
}

void OPLParser::CopyConsumed() {
    if (uncopied_ > kMaxMessage - bufferLength_) {
        state_ = State::Error;
    } else if (uncopied_ > 0) {
        std::memcpy(buffer_ + bufferLength_, input_ + inputOffset_ - uncopied_, uncopied_);
        bufferLength_ += uncopied_;
    }
    uncopied_ = 0;
}

}  // namespace opl
