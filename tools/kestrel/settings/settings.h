// The catalogue's settings as people name and describe them.
#pragma once

#include <catalogue/rows.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// How people write a setting's value.
enum class ValueForm { Bool, Integer, Word, Text, Address };

struct IntegerRange final {
    int64_t lowest;
    int64_t highest;
};

[[nodiscard]] ValueForm FormOf(const catalogue::Row& row);

// What the setter's type holds; the device may accept less.
[[nodiscard]] IntegerRange WritableRange(const catalogue::Row& row);

// For lists and refusals: "u8", "rw", "0 to 255".
[[nodiscard]] std::string_view TypeName(const catalogue::Row& row);
[[nodiscard]] std::string AccessName(const catalogue::Row& row);
[[nodiscard]] std::string AllowedValues(const catalogue::Row& row);

// The row with this name (fax.redials) or this key of the command language (DeviceSettings.Fax.Redials),
// letters taken without case. Throws a usage failure that offers the nearest names.
[[nodiscard]] const catalogue::Row& FindSetting(std::string_view name);

// The same, and a usage failure when the setting can only be written, or only be read.
[[nodiscard]] const catalogue::Row& FindReadableSetting(std::string_view name);
[[nodiscard]] const catalogue::Row& FindWritableSetting(std::string_view name);

// Rows whose name matches, in the catalogue's order: `*` and `?` as in file names; a pattern without them
// matches every name that contains it.
[[nodiscard]] std::vector<const catalogue::Row*> MatchingSettings(std::string_view pattern);

// "did you mean fax.redials?" with at most three names, nearest first; where to look when nothing is near.
[[nodiscard]] std::string NearNamesAdvice(std::string_view name);

}  // namespace cli
