// A whole request or reply as people read it, with its secrets hidden.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vprinter {

struct MessageTextOptions {
    bool showSecrets = false;
    size_t maxBytes = static_cast<size_t>(-1);  // of the message that are shown
};

/// Text is shown in its readable form (readable_text.h), a binary block as <C0 A8 00 01>. Secrets are hidden
/// wherever their key stands, whatever else is wrong with the message.
[[nodiscard]] std::string MessageText(std::string_view message, const MessageTextOptions& options);

/// The message's own bytes, with "*****" in place of each secret.
[[nodiscard]] std::string WithoutSecrets(std::string_view message);

}  // namespace vprinter
