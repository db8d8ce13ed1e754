// What a shell may offer at a place of the command line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shared/command_text.h"

namespace cli {

enum class OfferKind { Words, Files, Text };

struct LineOffer final {
    OfferKind kind = OfferKind::Text;
    std::vector<tools::Explained> words;
    std::string hint;  // of a text: what is expected
};

// `before`: the words between the program's name and the one at the cursor, `current`, of which only what
// stands before the cursor counts. Words are told by their beginning, letters taken without case.
[[nodiscard]] LineOffer CompleteLine(const tools::CommandText& program,
                                     const std::vector<std::string>& before, std::string_view current);

}  // namespace cli
