// Values of settings between people, scripts and the library.
#pragma once

#include <catalogue/rows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "shared/json.h"

namespace cli {

// What is shown for a secret that nobody asked for.
inline constexpr std::string_view kSecretMask = "********";

// A setting's value between the command line and the library. Which member counts follows from the row.
struct Value final {
    int64_t number = 0;  // bool 0 or 1; an enumeration's number; an address with its first byte lowest
    std::string text;    // UTF-8, of text settings

    bool operator==(const Value&) const = default;
};

// What a person wrote, as the row's setter takes it: yes/no words, numbers within the exported width, a word
// or number of the table, a dotted address, a text that fits and that the code page holds. Throws a value
// failure that names what is allowed.
[[nodiscard]] Value ParseValue(const catalogue::Row& row, std::string_view written);

// Four decimal numbers with dots, the first one lowest; none for anything else.
[[nodiscard]] std::optional<uint32_t> ParseDottedAddress(std::string_view written);

// As `get` prints it, and as ParseValue reads it back. A number that the table does not know stays a number.
[[nodiscard]] std::string FormatValue(const catalogue::Row& row, const Value& value);

// Booleans and numbers as such; an enumeration as its word.
[[nodiscard]] tools::Json JsonValue(const catalogue::Row& row, const Value& value);

}  // namespace cli
