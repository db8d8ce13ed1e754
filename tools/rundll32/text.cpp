#include "rundll32/text.h"

#include <filesystem>
#include <system_error>

#include "rundll32/refusal.h"

namespace printui {

// The library's one conversion between the two that is not of the system's code page.
WideText WideFromUtf8(const std::string& text) {
    try {
        return std::filesystem::path(text).string<WCHAR>();
    } catch (const std::system_error&) {
        throw Refusal{"an argument is not UTF-8 text.", "Give it in the encoding of a UTF-8 terminal.", 2};
    }
}

std::string Utf8FromWide(const WideText& text) {
    try {
        return std::filesystem::path(text).string();
    } catch (const std::system_error&) {
        return "?";
    }
}

WideText Lower(WideView text) {
    WideText lower(text);
    for (WCHAR& unit : lower)
        if (unit >= 'A' && unit <= 'Z') unit = static_cast<WCHAR>(unit + ('a' - 'A'));
    return lower;
}

}  // namespace printui
