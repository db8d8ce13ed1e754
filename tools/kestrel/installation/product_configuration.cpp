// The template filled in, and the file replaced in one step.
#include "kestrel/installation/product_configuration.h"

#include <windows.h>

#include <fmt/core.h>

#include <algorithm>
#include <optional>
#include <system_error>

#include "kestrel/failure.h"
#include "kestrel/installation/spooler.h"
#include "kestrel/text/text.h"
#include "shared/file.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

// The reader of the file sees no more of one section.
constexpr DWORD kSectionUnits = 2600;
constexpr size_t kLongestDriverName = 259;
constexpr size_t kSignatureLength = 4;

std::string UpperAscii(std::string text) {
    for (char& c : text) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return text;
}

// A line of its own, and the key of other lines.
bool IsWritableDriverName(const std::string& name) {
    const bool hasBorderBlank = name.front() == ' ' || name.back() == ' ';
    const bool readsAsOther = name.front() == ';' || name.front() == '[' || name.front() == '"';
    const bool hasControl =
        std::any_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; });
    return !hasBorderBlank && !readsAsOther && !hasControl && name.find('=') == std::string::npos;
}

// The name as the file's code page holds it.
std::string DriverNameForFile(const std::string& name) {
    if (name.empty() || !IsWritableDriverName(name)) {
        throw ValueFailure(fmt::format("\"{}\" cannot be the name of a driver", name),
                           "use a name without '=', control characters and blanks at its ends");
    }
    const WideText wide = WideArgument(name, "driver name");
    const std::optional<std::string> ansi = AnsiFromWide(wide);
    if (wide.size() > kLongestDriverName || !ansi) {
        throw ValueFailure(
            fmt::format("the driver name \"{}\" is too long or has characters that the system's "
                        "code page lacks",
                        name),
            fmt::format("use at most {} characters of that code page", kLongestDriverName));
    }
    return *ansi;
}

void CheckProduct(const std::string& product) {
    const bool plain = !product.empty() && std::all_of(product.begin(), product.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
               c == '_';
    });
    if (!plain) {
        throw UsageFailure(fmt::format("\"{}\" cannot be a product prefix", product),
                           "use letters, digits, '-' and '_', such as " KESTREL_PRODUCT);
    }
}

void ReplaceAll(std::string& text, std::string_view what, std::string_view with) {
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
        text.replace(at, what.size(), with);
    }
}

[[noreturn]] void ThrowUnwritable(const fs::path& path, const std::string& reason) {
    throw Failure{ExitCode::OwnFault,
                  fmt::format("the product configuration {} cannot be written: {}", path.string(), reason),
                  "run `kestrel setup` with an account that may write to the driver directory",
                  {},
                  {},
                  {}};
}

}  // namespace

fs::path ConfigurationPath(const std::string& product) {
    CheckProduct(product);
    return fs::path(WideArgument(DriverDirectory(), "driver directory")) / "3" /
           (UpperAscii(product) + ".INI");
}

std::vector<std::string> ConfiguredDrivers(const std::string& product) {
    const WideText path = ConfigurationPath(product).string<WCHAR>();
    std::vector<WCHAR> lines(kSectionUnits);
    const DWORD length =
        GetPrivateProfileSectionW(TEXT("Printers"), lines.data(), kSectionUnits, path.c_str());

    std::vector<std::string> drivers;
    std::basic_string_view<WCHAR> rest(lines.data(), std::min<size_t>(length, lines.size()));
    while (!rest.empty()) {
        const size_t end = std::min(rest.find(WCHAR{0}), rest.size());
        if (end > 0) drivers.push_back(Utf8FromWide(rest.substr(0, end)));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return drivers;
}

std::string ConfigurationText(const std::string& product, const std::vector<std::string>& drivers) {
    CheckProduct(product);
    std::string signature = UpperAscii(product).substr(0, kSignatureLength);
    signature.resize(kSignatureLength, '_');

    std::string filledTemplate(kProductTemplate);
    ReplaceAll(filledTemplate, "{product}", UpperAscii(product));
    ReplaceAll(filledTemplate, "{prefix}", product);
    ReplaceAll(filledTemplate, "{signature}", signature);

    std::string text;
    std::string_view rest = filledTemplate;
    while (!rest.empty()) {
        const size_t end = std::min(rest.find('\n'), rest.size() - 1) + 1;
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end);
        if (line.find("{driver}") == std::string_view::npos) {
            text += line;
            continue;
        }
        for (const std::string& driver : drivers) {
            std::string filled(line);
            ReplaceAll(filled, "{driver}", DriverNameForFile(driver));
            text += filled;
        }
    }
    ReplaceAll(text, "\n", "\r\n");
    return text;
}

Written WriteConfiguration(const fs::path& path, const std::string& text) {
    std::error_code error;
    const bool existed = fs::exists(path, error);
    const std::optional<std::string> old = tools::ReadFile(path);
    if (old == text) return Written::Unchanged;

    fs::create_directories(path.parent_path(), error);
    if (error) ThrowUnwritable(path, error.message());
    if (existed && !old) ThrowUnwritable(path, "the one that is there cannot be read and kept");
    const auto write = [](const fs::path& file, const std::string& content) {
        if (const auto failure = tools::RewriteFile(file, content, tools::Readers::All))
            ThrowUnwritable(file, failure.message());
    };
    if (old) {
        fs::path kept = path;
        kept += ".bak";
        write(kept, *old);
    }
    write(path, text);
    return existed ? Written::Replaced : Written::New;
}

}  // namespace cli
