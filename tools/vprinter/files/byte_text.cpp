#include "vprinter/files/byte_text.h"

#include <cstdint>

namespace vprinter {

std::string ToUtf8(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<uint8_t>(c);
        if (byte < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0 | (byte >> 6));
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

std::string FromUtf8(std::string_view text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto lead = static_cast<uint8_t>(text[i]);
        if (lead < 0x80) {
            bytes += text[i];
        } else if ((lead == 0xC2 || lead == 0xC3) && i + 1 < text.size()) {
            bytes += static_cast<char>((lead << 6) | (text[++i] & 0x3F));
        } else if (lead >= 0xC0) {
            bytes += '?';
        }
    }
    return bytes;
}

}  // namespace vprinter
