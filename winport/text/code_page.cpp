#include "winport/text/code_page.h"

#include <iconv.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "winport/text/utf.h"

namespace winport {

namespace {

// A conversion descriptor of the C library. Not shared between threads: opened for one conversion.
class Converter final {
  public:
    Converter(const std::string& to, const std::string& from)
        : descriptor_(iconv_open(to.c_str(), from.c_str())) {}
    ~Converter() {
        if (*this) iconv_close(descriptor_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    explicit operator bool() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

    // Converts from the front of `input` as far as it goes, appending to `output`. False at a sequence that
    // has no counterpart or is incomplete; `input` then begins with it.
    bool Run(std::string_view& input, std::string& output) {
        while (!input.empty()) {
            char block[512];
            char* from = const_cast<char*>(input.data());  // iconv reads through a pointer to non-const
            char* to = block;
            std::size_t fromLeft = input.size();
            std::size_t toLeft = sizeof block;
            const std::size_t result = iconv(descriptor_, &from, &fromLeft, &to, &toLeft);
            const bool blockFull = result == static_cast<std::size_t>(-1) && errno == E2BIG;
            output.append(block, sizeof block - toLeft);
            input.remove_prefix(input.size() - fromLeft);
            if (result == static_cast<std::size_t>(-1) && !blockFull) return false;
        }
        return true;
    }

  private:
    iconv_t descriptor_;
};

constexpr char kWide[] = "UTF-16LE";

std::string PageName(UINT page) {
    return "CP" + std::to_string(page);
}

UINT PageFromEnvironment() {
    const char* text = std::getenv("WINPORT_ANSI_CODEPAGE");
    if (text == nullptr) return kWindows1252;
    UINT page = 0;
    const char* end = text + std::strlen(text);
    if (std::from_chars(text, end, page).ptr != end) return kWindows1252;
    if (page == kUtf8 || page == kWindows1252) return page;
    const bool known = Converter(kWide, PageName(page)) && Converter(PageName(page), kWide);
    return known ? page : kWindows1252;
}

char16_t UnicodeDefault(UINT page) {
    return page == 932 ? u'\u30FB' : u'?';
}

std::string_view AsBytes(std::u16string_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)};
}

}  // namespace

UINT AnsiCodePage() {
    static const UINT page = PageFromEnvironment();
    return page;
}

std::u16string DecodeInPage(UINT page, std::string_view bytes) {
    if (page == kUtf8) return FromUtf8(bytes);
    Converter converter(kWide, PageName(page));
    if (!converter) return {};
    const char16_t missing = UnicodeDefault(page);
    std::string wide;
    while (!converter.Run(bytes, wide)) {
        wide.append(AsBytes({&missing, 1}));
        bytes.remove_prefix(1);
    }
    std::u16string text(wide.size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), wide.data(), text.size() * sizeof(char16_t));
    return text;
}

std::string EncodeInPage(UINT page, std::u16string_view text, char fallback, bool& usedFallback) {
    if (page == kUtf8) return ToUtf8(text);
    Converter converter(PageName(page), kWide);
    if (!converter) return {};
    std::string bytes;
    std::string_view input = AsBytes(text);
    while (!converter.Run(input, bytes)) {
        bytes += fallback;
        usedFallback = true;
        input.remove_prefix(sizeof(char16_t));
    }
    return bytes;
}

}  // namespace winport
