// Which settings are nobody's business.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "opl/vocabulary.h"

namespace vprinter {

inline constexpr std::array kSecretKeys{
    OplKey::WirelessSecurityPassPhrase, OplKey::WirelessSecurityKey0, OplKey::WirelessSecurityKey1,
    OplKey::WirelessSecurityKey2,       OplKey::WirelessSecurityKey3,
};

/// Whether the text ends in the key of a secret.
[[nodiscard]] inline bool EndsInSecretKey(std::string_view text) {
    return std::ranges::any_of(kSecretKeys, [&](OplKey key) { return text.ends_with(KeyText(key)); });
}

}  // namespace vprinter
