// Bytes of any kind as one word of a line, for the commands that tests give to their counterparts; and plain
// characters as the library takes them.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "kwt/wide_text.h"

// %XX for a byte that ends a word or a line, and for the percent sign itself.
inline std::string AsWord(std::string_view bytes) {
    std::string word;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        char coded[4] = {byte};
        if (value <= ' ' || value == '%') std::snprintf(coded, sizeof(coded), "%%%02X", value);
        word += coded;
    }
    return word;
}

inline std::string FromWord(std::string word) {
    for (size_t at = 0; (at = word.find('%', at)) != std::string::npos; ++at)
        word.replace(at, 3, 1, static_cast<char>(std::stoi(word.substr(at + 1, 2), nullptr, 16)));
    return word;
}

inline WideText Widened(std::string_view text) {
    return WideText(text.begin(), text.end());
}
