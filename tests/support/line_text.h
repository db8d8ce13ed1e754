// Bytes of any kind as one word of a line, for the commands that tests give to their counterparts.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

// %XX for a byte that ends a word or a line, and for the percent sign itself.
inline std::string AsWord(std::string_view bytes) {
    std::string word;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        char coded[4];
        std::snprintf(coded, sizeof(coded), "%%%02X", value);
        if (value <= ' ' || value == '%')
            word += coded;
        else
            word += byte;
    }
    return word;
}

inline std::string FromWord(std::string_view word) {
    std::string bytes;
    for (size_t i = 0; i < word.size(); ++i) {
        if (word[i] == '%' && i + 2 < word.size()) {
            bytes += static_cast<char>(std::stoi(std::string(word.substr(i + 1, 2)), nullptr, 16));
            i += 2;
        } else {
            bytes += word[i];
        }
    }
    return bytes;
}
