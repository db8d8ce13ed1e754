// A reply is taken apart at its number and at the first key and value, and put together another way.
#include "vprinter/faults/faulty_reply.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>

namespace vprinter {
namespace {

constexpr size_t kMaxMade = 1 << 20;  // bytes

/// Where the first item begins: behind the response number, if there is one.
size_t ItemsBegin(std::string_view reply) {
    const size_t digits = std::min(reply.find_first_not_of("0123456789"), reply.size());
    return digits < reply.size() && reply[digits] == ',' ? digits + 1 : 0;
}

struct Item {
    size_t keyEnd;
    size_t valueBegin;
    size_t end;  // at its & or ;
};

/// The item that begins at `begin`: Key=value or Key#4=<4 bytes>.
Item ItemAt(std::string_view reply, size_t begin) {
    const size_t keyEnd = std::min(reply.find_first_of("=#&;", begin), reply.size());
    const size_t equals = std::min(reply.find_first_of("=&;", keyEnd), reply.size());
    const bool hasValue = equals < reply.size() && reply[equals] == '=';
    const size_t valueBegin = hasValue ? equals + 1 : equals;
    size_t block = 0;
    if (hasValue && reply[keyEnd] == '#')
        std::from_chars(reply.data() + keyEnd + 1, reply.data() + equals, block);
    const size_t searched = valueBegin + std::min(block, reply.size() - valueBegin);
    return {keyEnd, valueBegin, std::min(reply.find_first_of("&;", searched), reply.size())};
}

std::string WithNumber(std::string_view reply, uint64_t number) {
    return fmt::format("{:04},{}", number, reply.substr(ItemsBegin(reply)));
}

std::string WithKey(std::string_view reply, std::string_view key) {
    const size_t begin = ItemsBegin(reply);
    return fmt::format("{}{}{}", reply.substr(0, begin), key, reply.substr(ItemAt(reply, begin).keyEnd));
}

// A block stays one, of the new length.
std::string WithValue(std::string_view reply, std::string_view value) {
    const Item first = ItemAt(reply, ItemsBegin(reply));
    const bool isBlock = first.keyEnd < reply.size() && reply[first.keyEnd] == '#';
    return fmt::format("{}{}={}{}", reply.substr(0, first.keyEnd),
                       isBlock ? fmt::format("#{}", value.size()) : "", value, reply.substr(first.end));
}

std::string WithHighBits(std::string_view reply) {
    const Item first = ItemAt(reply, ItemsBegin(reply));
    std::string text(reply);
    for (size_t i = first.valueBegin; i < first.end; ++i)
        text[i] = static_cast<char>(static_cast<unsigned char>(text[i]) | 0x80);
    return text;
}

std::string WithItems(std::string_view reply, uint64_t count) {
    size_t end = ItemAt(reply, ItemsBegin(reply)).end;
    for (uint64_t i = 1; i < count && end < reply.size() && reply[end] == '&'; ++i)
        end = ItemAt(reply, end + 1).end;
    return std::string(reply.substr(0, end)) + ';';
}

std::string Padded(std::string_view reply, uint64_t size) {
    std::string text(reply);
    if (size > text.size() && !text.empty()) text.insert(text.size() - 1, size - text.size(), 'x');
    return text;
}

std::string Repeated(std::string_view reply, uint64_t times) {
    std::string text;
    for (uint64_t i = 0; i < times && text.size() + reply.size() <= kMaxMade; ++i)
        text += reply;
    return text;
}

}  // namespace

std::string_view FaultyReply(const Fault& fault, std::string_view reply, std::string_view previous,
                             std::string& scratch) {
    switch (fault.action) {
        case FaultAction::PreviousReply:
            return previous;
        case FaultAction::Cut:
            return reply.substr(0, fault.number);
        case FaultAction::NoTerminator:
            return reply.substr(0, reply.size() - std::min<size_t>(reply.size(), 1));
        case FaultAction::NoNumber:
            return reply.substr(ItemsBegin(reply));
        case FaultAction::Garbage:
        case FaultAction::Reply:
            return fault.bytes;
        case FaultAction::ResponseNumber:
            return scratch = WithNumber(reply, fault.number);
        case FaultAction::WrongKey:
            return scratch = WithKey(reply, fault.bytes);
        case FaultAction::Value:
            return scratch = WithValue(reply, fault.bytes);
        case FaultAction::HighBit:
            return scratch = WithHighBits(reply);
        case FaultAction::Items:
            return scratch = WithItems(reply, fault.number);
        case FaultAction::Repeat:
            return scratch = Repeated(reply, fault.number);
        case FaultAction::Pad:
            return scratch = Padded(reply, fault.number);
        default:
            return reply;
    }
}

}  // namespace vprinter
