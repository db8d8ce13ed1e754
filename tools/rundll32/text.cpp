// The one text that can be wrong: an argument.
#include "rundll32/text.h"

#include "rundll32/refusal.h"

namespace printui {

WideText WideArgument(const std::string& text) {
    if (auto wide = tools::WideFromUtf8(text)) return *std::move(wide);
    throw Refusal{"an argument is not UTF-8 text.", "Give it in the encoding of a UTF-8 terminal.", 2};
}

}  // namespace printui
