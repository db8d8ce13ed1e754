// Conversions between UTF-16 and the ANSI code page. In Windows-1252 one unit is always one byte, so that
// page, the usual one, is converted in place by a loop; the others go through a copy.
#include <windows.h>

#include <algorithm>
#include <climits>
#include <iterator>
#include <string>
#include <string_view>

#include "winport/text/code_page.h"

namespace winport {

namespace {

// Bytes 0x80 to 0x9F; elsewhere Windows-1252 is Latin-1. The five that the page leaves open pass as controls.
constexpr char16_t kUpperControls[] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};
static_assert(std::size(kUpperControls) == 32);

char16_t From1252(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return code >= 0x80 && code <= 0x9F ? kUpperControls[code - 0x80] : code;
}

// No "best fit": a look-alike of another letter would change an SSID or a password unseen.
char To1252(char16_t unit, char fallback, bool& usedFallback) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) return static_cast<char>(unit);
    const auto found = std::find(std::begin(kUpperControls), std::end(kUpperControls), unit);
    if (found != std::end(kUpperControls)) {
        return static_cast<char>(0x80 + std::distance(std::begin(kUpperControls), found));
    }
    usedFallback = true;
    return fallback;
}

int NoLength(DWORD error) {
    SetLastError(error);
    return 0;
}

// What both calls refuse before they look at the text; ERROR_SUCCESS when there is nothing to refuse.
DWORD CheckArguments(UINT codePage, DWORD flags, const void* text, int length, const void* buffer,
                     int capacity) {
    if (text == nullptr || length == 0 || capacity < 0) return ERROR_INVALID_PARAMETER;
    if (capacity > 0 && (buffer == nullptr || buffer == text)) return ERROR_INVALID_PARAMETER;
    if (codePage != CP_ACP && codePage != AnsiCodePage()) return ERROR_INVALID_PARAMETER;
    return flags == 0 ? ERROR_SUCCESS : ERROR_INVALID_FLAGS;
}

// A negative length means: up to and with the terminator.
template <typename Char>
std::basic_string_view<Char> Input(const Char* text, int length) {
    if (length >= 0) return {text, static_cast<std::size_t>(length)};
    return {text, std::char_traits<Char>::length(text) + 1};
}

// The two-pass protocol: the count when no buffer is given, 0 with an error when the buffer is too small.
// `fill` is called only when the result fits.
template <typename Fill>
int Deliver(std::size_t count, int capacity, Fill fill) {
    if (count > INT_MAX) return NoLength(ERROR_INVALID_PARAMETER);
    if (capacity == 0) return static_cast<int>(count);
    if (count > static_cast<std::size_t>(capacity)) return NoLength(ERROR_INSUFFICIENT_BUFFER);
    fill();
    return static_cast<int>(count);
}

}  // namespace

}  // namespace winport

using namespace winport;

UINT GetACP() {
    return AnsiCodePage();
}

int MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH text, int length, LPWSTR buffer, int capacity) {
    const DWORD refused = CheckArguments(codePage, flags, text, length, buffer, capacity);
    if (refused != ERROR_SUCCESS) return NoLength(refused);
    const std::string_view input = Input(text, length);
    if (AnsiCodePage() == kWindows1252) {
        return Deliver(input.size(), capacity,
                       [&] { std::transform(input.begin(), input.end(), buffer, From1252); });
    }
    const std::u16string wide = DecodeInPage(AnsiCodePage(), input);
    return Deliver(wide.size(), capacity, [&] { std::copy(wide.begin(), wide.end(), buffer); });
}

int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH text, int length, LPSTR buffer, int capacity,
                        LPCCH defaultChar, LPBOOL usedDefaultChar) {
    const DWORD refused = CheckArguments(codePage, flags, text, length, buffer, capacity);
    if (refused != ERROR_SUCCESS) return NoLength(refused);
    const UINT page = AnsiCodePage();
    if (page == kUtf8 && (defaultChar != nullptr || usedDefaultChar != nullptr))
        return NoLength(ERROR_INVALID_PARAMETER);
    const std::u16string_view input = Input(text, length);
    const char fallback = defaultChar != nullptr ? *defaultChar : '?';
    bool usedFallback = false;
    int result;
    if (page == kWindows1252) {
        const auto convert = [&](char16_t unit) { return To1252(unit, fallback, usedFallback); };
        result = Deliver(input.size(), capacity,
                         [&] { std::transform(input.begin(), input.end(), buffer, convert); });
        // Without a buffer nothing was converted, yet the question whether something would be lost stands.
        if (capacity == 0 && usedDefaultChar != nullptr) std::for_each(input.begin(), input.end(), convert);
    } else {
        const std::string bytes = EncodeInPage(page, input, fallback, usedFallback);
        result = Deliver(bytes.size(), capacity, [&] { std::copy(bytes.begin(), bytes.end(), buffer); });
    }
    if (usedDefaultChar != nullptr) *usedDefaultChar = usedFallback ? TRUE : FALSE;
    return result;
}
