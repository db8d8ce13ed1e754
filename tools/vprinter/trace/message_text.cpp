// A walk over the message that knows blocks and keys, whatever state it is in.
#include "vprinter/trace/message_text.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <iterator>

#include "catalogue/rows.h"
#include "vprinter/trace/readable_text.h"

namespace vprinter {
namespace {

constexpr std::string_view kMask = "*****";

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
        fmt::format_to(std::back_inserter(out), "{}{:02X}", i == 0 ? "" : " ",
                       static_cast<uint8_t>(block[i]));
    }
    out += block.size() > maxBytes ? " ...>" : ">";
}

bool EndsInSecretKey(std::string_view text) {
    return std::ranges::any_of(catalogue::Rows(), [&](const catalogue::Row& row) {
        return row.IsSecret() && text.ends_with(row.key);
    });
}

enum class Form : uint8_t { Readable, Bytes };

/// Walks over a message and appends it piece by piece.
class MessageWriter final {
  public:
    MessageWriter(std::string_view message, const MessageTextOptions& options, Form form)
        : message_(message), options_(options), form_(form) {}

    [[nodiscard]] std::string Write() {
        while (at_ < message_.size() && at_ < options_.maxBytes) {
            const size_t mark = std::min(message_.find_first_of("=#", at_), message_.size());
            const bool secret = !options_.showSecrets && EndsInSecretKey(message_.substr(0, mark));
            WriteText(mark);
            if (at_ == mark && mark < message_.size()) WriteValue(secret);
        }
        if (at_ < message_.size()) out_ += fmt::format(" ... ({} bytes)", message_.size());
        return std::move(out_);
    }

  private:
    void Append(std::string_view text) {
        if (form_ == Form::Readable)
            AppendReadable(out_, text);
        else
            out_ += text;
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
            out_ += kMask;
            at_ += length;
        } else if (block) {
            WriteBlock(message_.substr(at_, length));
            at_ += length;
        }
    }

    void WriteBlock(std::string_view block) {
        if (form_ == Form::Readable)
            AppendBlock(out_, block, options_.maxBytes - std::min(at_, options_.maxBytes));
        else
            out_ += block;
    }

    std::string_view message_;
    const MessageTextOptions& options_;
    Form form_;
    size_t at_ = 0;
    std::string out_;
};

}  // namespace

std::string MessageText(std::string_view message, const MessageTextOptions& options) {
    return MessageWriter(message, options, Form::Readable).Write();
}

std::string WithoutSecrets(std::string_view message) {
    return MessageWriter(message, {}, Form::Bytes).Write();
}

}  // namespace vprinter
