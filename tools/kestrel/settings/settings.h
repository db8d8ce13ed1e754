#pragma once

#include <settings/catalogue.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// How people write a setting's value.
enum class ValueForm { kBool, kInteger, kWord, kText, kAddress };

struct IntegerRange final {
    std::int64_t lowest;
    std::int64_t highest;
};

[[nodiscard]] ValueForm FormOf(const SettingRow& row);
[[nodiscard]] bool IsReadable(const SettingRow& row);
[[nodiscard]] bool IsWritable(const SettingRow& row);

// Keys and pass phrases: not shown to somebody who did not ask for exactly them.
[[nodiscard]] bool IsSecret(const SettingRow& row);

// What the setter's type holds; the device may accept less.
[[nodiscard]] IntegerRange WritableRange(const SettingRow& row);

// Characters that can be read back of a text.
[[nodiscard]] std::size_t LongestText(const SettingRow& row);

// The words of an enumeration; none for other settings.
[[nodiscard]] std::span<const EnumEntry> Words(const SettingRow& row);

// For lists and refusals: "u8", "rw", "0 to 255".
[[nodiscard]] std::string_view TypeName(const SettingRow& row);
[[nodiscard]] std::string AccessName(const SettingRow& row);
[[nodiscard]] std::string AllowedValues(const SettingRow& row);

// The row with this name (fax.redials) or this key of the command language (DeviceSettings.Fax.Redials),
// letters taken without case. Throws a usage failure that offers the nearest names.
[[nodiscard]] const SettingRow& FindSetting(std::string_view name);

// The same, and a usage failure when the setting can only be written, or only be read.
[[nodiscard]] const SettingRow& FindReadableSetting(std::string_view name);
[[nodiscard]] const SettingRow& FindWritableSetting(std::string_view name);

// Rows whose name matches, in the catalogue's order: `*` and `?` as in file names; a pattern without them
// matches every name that contains it.
[[nodiscard]] std::vector<const SettingRow*> MatchingSettings(std::string_view pattern);

// "did you mean fax.redials?" with at most three names, nearest first; where to look when nothing is near.
[[nodiscard]] std::string NearNamesAdvice(std::string_view name);

}  // namespace cli
