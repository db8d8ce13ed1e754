// Names that Windows compares without case: registry keys, printers, initialisation-file sections and keys.
#pragma once

#include <string>
#include <string_view>

namespace winport {

// The text in upper case, character by character: the form in which Windows compares and orders names ("_"
// therefore comes after the letters). The mapping never changes with the locale, since folded names lie on
// disk.
std::u16string FoldCase(std::u16string_view text);

bool EqualsWithoutCase(std::u16string_view left, std::u16string_view right);

}  // namespace winport
