// The text of an initialisation file: bytes to UTF-16, sections, lines. Views point into the caller's text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace winport {

// UTF-16 with a byte order mark (either order) is read as such; everything else, a UTF-8 mark included, is
// text in the ANSI code page.
std::u16string DecodeProfile(std::string_view bytes);

// Without blanks at both ends; the mark that once ended texts (Ctrl-Z) counts as one.
std::u16string_view TrimBlanks(std::u16string_view text);

// The lines of the first section of that name (compared without case), headers excluded.
// Nothing when there is no such section.
std::optional<std::u16string_view> FindSection(std::u16string_view text, std::u16string_view name);

// One line that says something: the part before the first "=", and the part after it, both trimmed.
struct ProfileEntry {
    std::u16string_view key;
    std::u16string_view value;
    bool hasEquals = false;
};

// Takes the next entry from the front of `lines`, passing over comments and empty lines. Nothing at the end.
std::optional<ProfileEntry> NextEntry(std::u16string_view& lines);

}  // namespace winport
