// Names that stand for texts in a test file: ${name}.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "shared/json.h"

namespace cli {

using Variables = std::map<std::string, std::string, std::less<>>;

// The text with each ${name} replaced; $${ stands for ${. Throws a usage failure for a name that is not among
// them, and for one without its }.
[[nodiscard]] std::string Substituted(std::string_view text, const Variables& variables);

// The same in every text of a value.
[[nodiscard]] tools::Json AllSubstituted(const tools::Json& value, const Variables& variables);

// Whether a text can be judged before the test runs.
[[nodiscard]] bool HasVariables(std::string_view text);

}  // namespace cli
