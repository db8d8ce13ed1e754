// A walk over the message that knows blocks and keys, whatever state it is in.
#include "opl/message_text.h"

#include <algorithm>
#include <charconv>

#include "opl/readable_text.h"

namespace opl {
namespace {

/// The length of the binary block whose "#" stands at the front of `text`, with what precedes its bytes;
/// false when there is no such block.
bool FindBlock(std::string_view text, size_t& headLength, size_t& blockLength) {
    const auto [after, error] = std::from_chars(text.data() + 1, text.data() + text.size(), blockLength);
    if (error != std::errc() || after == text.data() + text.size() || *after != '=') return false;
    headLength = static_cast<size_t>(after - text.data()) + 1;
    blockLength = std::min(blockLength, text.size() - headLength);
    return true;
}

void AppendBlock(std::string& out, std::string_view block, size_t maxBytes) {
    out += '<';
    for (size_t i = 0; i < std::min(block.size(), maxBytes); ++i) {
        if (i != 0) out += ' ';
        AppendHexByte(out, block[i]);
    }
    out += block.size() > maxBytes ? " ...>" : ">";
}

/// Walks over a message and appends it piece by piece.
class MessageWriter final {
  public:
    MessageWriter(std::string& out, std::string_view message, const MessageTextOptions& options)
        : out_(out), message_(message), options_(options) {}

    void Write() {
        while (at_ < message_.size() && at_ < options_.maxBytes) {
            const size_t mark = std::min(message_.find_first_of("=#", at_), message_.size());
            const bool secret =
                options_.endsInSecretKey != nullptr && options_.endsInSecretKey(message_.substr(0, mark));
            WriteText(mark);
            if (at_ == mark && mark < message_.size()) WriteValue(secret);
        }
        if (at_ < message_.size()) out_ += " ... (" + std::to_string(message_.size()) + " bytes)";
    }

  private:
    void Append(std::string_view text) {
        if (options_.form == MessageForm::Bytes)
            out_ += text;
        else
            AppendReadable(out_, text);
    }

    void WriteText(size_t end) {
        end = std::min(end, options_.maxBytes);
        Append(message_.substr(at_, end - at_));
        at_ = end;
    }

    /// From the "=" or "#" that ends a key.
    void WriteValue(bool secret) {
        size_t head = 1;
        size_t length = 0;
        const bool block = message_[at_] == '#' && FindBlock(message_.substr(at_), head, length);
        Append(message_.substr(at_, head));
        at_ += head;
        if (secret) {
            if (!block) length = std::min(message_.find_first_of("&;?", at_), message_.size()) - at_;
            out_ += kSecretMask;
            at_ += length;
        } else if (block) {
            WriteBlock(message_.substr(at_, length));
            at_ += length;
        }
    }

    void WriteBlock(std::string_view block) {
        if (options_.form == MessageForm::ForPeople)
            AppendBlock(out_, block, options_.maxBytes - std::min(at_, options_.maxBytes));
        else
            Append(block);
    }

    std::string& out_;
    std::string_view message_;
    const MessageTextOptions& options_;
    size_t at_ = 0;
};

}  // namespace

void AppendMessageText(std::string& out, std::string_view message, const MessageTextOptions& options) {
    MessageWriter(out, message, options).Write();
}

std::string MessageText(std::string_view message, const MessageTextOptions& options) {
    std::string text;
    AppendMessageText(text, message, options);
    return text;
}

}  // namespace opl
