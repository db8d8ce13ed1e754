// What a shell may offer where a setting or a value is named.
#pragma once

#include <catalogue/rows.h>

#include <string>
#include <vector>

#include "shared/command_text.h"

namespace cli {

// Keys of settings that can be read, that can be set, and all. `before` is not looked at.
[[nodiscard]] tools::Offer OfferReadable(const std::vector<std::string>& before);
[[nodiscard]] tools::Offer OfferWritable(const std::vector<std::string>& before);
[[nodiscard]] tools::Offer OfferSettings(const std::vector<std::string>& before);

// Values of a setting: its words, or the bounds of what the printer takes.
[[nodiscard]] tools::Offer OfferValues(const catalogue::Row& row);
// The same of the setting whose key stands before.
[[nodiscard]] tools::Offer OfferValuesOfKey(const std::vector<std::string>& before);

}  // namespace cli
