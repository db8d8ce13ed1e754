#include "vprinter/requests/reply_items.h"

#include "opl/value_escape.h"

namespace vprinter {

ReplyItems& ReplyItems::Text(std::string_view key, std::string_view value) {
    Begin(key);
    items_ += '=';
    opl::AppendEscaped(items_, value);
    return *this;
}

ReplyItems& ReplyItems::Number(std::string_view key, int64_t value) {
    Begin(key);
    items_ += '=';
    items_ += std::to_string(value);
    return *this;
}

ReplyItems& ReplyItems::Block(std::string_view key, std::string_view bytes) {
    Begin(key);
    items_ += '#';
    items_ += std::to_string(bytes.size());
    items_ += '=';
    items_ += bytes;
    return *this;
}

void ReplyItems::Begin(std::string_view key) {
    if (!items_.empty()) items_ += '&';
    items_ += key;
}

}  // namespace vprinter
