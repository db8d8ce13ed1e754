// A whole request or reply as people read it, with its secrets hidden.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace opl {

/// What stands for a secret.
inline constexpr std::string_view kSecretMask = "*****";

enum class MessageForm : uint8_t {
    ForPeople,  // text in its readable form (readable_text.h), a binary block as <C0 A8 00 01>
    Readable,   // blocks as well in the readable form, which can be read back
    Bytes,      // the message's own
};

struct MessageTextOptions {
    /// Whether a text ends in the key of a secret, which is then hidden; null hides nothing.
    bool (*endsInSecretKey)(std::string_view text) = nullptr;
    MessageForm form = MessageForm::ForPeople;
    size_t maxBytes = static_cast<size_t>(-1);  // of the message that are shown
};

/// Appends the message in the form asked for. Secrets are hidden wherever their key stands, whatever else is
/// wrong with the message.
void AppendMessageText(std::string& out, std::string_view message, const MessageTextOptions& options);
[[nodiscard]] std::string MessageText(std::string_view message, const MessageTextOptions& options);

}  // namespace opl
