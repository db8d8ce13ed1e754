// Bytes to text, text to lines, lines to sections; then the texts between "%".
#include "rundll32/inf_file.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>

#include "rundll32/refusal.h"
#include "shared/file.h"

namespace printui {

namespace {

constexpr const char* kPathAdvice = "Give the path of the driver's .INF file with /f.";
constexpr uintmax_t kLargestFile = uintmax_t{16} << 20;  // bytes
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

[[noreturn]] void Refuse(const std::string& path, const char* reason) {
    throw Refusal{fmt::format("cannot read \"{}\": {}.", path, reason), kPathAdvice};
}

std::string ReadBytes(const std::string& path) {
    std::string hostPath = path;
    std::replace(hostPath.begin(), hostPath.end(), '\\', '/');
    std::error_code failure;
    const auto status = std::filesystem::status(hostPath, failure);
    if (!std::filesystem::exists(status)) Refuse(path, "there is no such file");
    if (!std::filesystem::is_regular_file(status)) Refuse(path, "it is a folder or a device, not a file");
    if (std::filesystem::file_size(hostPath, failure) > kLargestFile || failure)
        Refuse(path, "it is too large for a set-up information file");
    std::optional<std::string> bytes = tools::ReadFile(hostPath);
    if (!bytes) Refuse(path, "reading it is not allowed or fails");
    return *std::move(bytes);
}

WideText FromCodePage(const std::string& bytes) {
    const int size = static_cast<int>(bytes.size());
    WideText text(bytes.size(), 0);
    text.resize(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, text.data(), size)));
    return text;
}

WideText FromUtf16(std::string_view bytes) {
    WideText text;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        text.push_back(static_cast<WCHAR>(high << 8 | low));
    }
    return text;
}

WideText Decode(const std::string& path, const std::string& bytes) {
    WideText text;
    if (bytes.starts_with(kUtf16Mark)) {
        text = FromUtf16(std::string_view(bytes).substr(kUtf16Mark.size()));
    } else if (bytes.starts_with(kUtf8Mark)) {
        auto wide = tools::WideFromUtf8(std::string_view(bytes).substr(kUtf8Mark.size()));
        if (!wide) Refuse(path, "it is not UTF-8 text, as its beginning says");
        text = *std::move(wide);
    } else {
        text = FromCodePage(bytes);
    }
    if (text.find(WCHAR(0)) != WideText::npos) Refuse(path, "it is not a text");
    return text;
}

WideView Trimmed(WideView text) {
    constexpr WCHAR kBlanks[] = TEXT(" \t\r");
    const size_t start = text.find_first_not_of(kBlanks);
    if (start == WideView::npos) return {};
    return text.substr(start, text.find_last_not_of(kBlanks) - start + 1);
}

// One line taken apart at its unquoted "=" and ","; ";" begins a comment, a doubled quote is a plain one.
InfLine ParseLine(WideView text) {
    InfLine line;
    WideText field;
    bool quoted = false;
    bool hasKey = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const WCHAR unit = text[i];
        if (unit == '"') {
            const bool doubled = quoted && i + 1 < text.size() && text[i + 1] == '"';
            if (doubled) field.push_back(text[i++]);
            quoted = quoted == doubled;
        } else if (quoted || (unit != ';' && unit != ',' && (unit != '=' || hasKey))) {
            field.push_back(unit);
        } else if (unit == ';') {
            break;
        } else {
            WideText finished(Trimmed(field));
            field.clear();
            if (unit == '=') {
                line.key = std::move(finished);
                hasKey = true;
            } else {
                line.values.push_back(std::move(finished));
            }
        }
    }
    line.values.emplace_back(Trimmed(field));
    return line;
}

// The next line, joined with those it is continued on by a backslash at its end.
WideText TakeLine(WideView& text) {
    WideText line;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        const WideView part = Trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        const bool goesOn = part.ends_with('\\');
        line.append(part.substr(0, part.size() - (goesOn ? 1 : 0)));
        if (!goesOn) break;
    }
    return line;
}

// %name% as the strings say, %% as one; a name that they lack stays as it is.
WideText WithStrings(const WideText& text, const std::map<WideText, WideText>& strings) {
    WideText result;
    size_t at = 0;
    while (at < text.size()) {
        const size_t start = std::min(text.find('%', at), text.size());
        result.append(text, at, start - at);
        const size_t end = start < text.size() ? text.find('%', start + 1) : WideText::npos;
        if (end == WideText::npos) return result.append(text, start, WideText::npos);
        const WideText name = text.substr(start + 1, end - start - 1);
        const auto found = strings.find(LowerAscii(name));
        if (name.empty())
            result.push_back('%');
        else
            result.append(found != strings.end() ? found->second : text.substr(start, end + 1 - start));
        at = end + 1;
    }
    return result;
}

}  // namespace

InfFile InfFile::Read(const std::string& path) {
    InfFile file;
    file.Parse(Decode(path, ReadBytes(path)));
    file.PutStringsIn();
    if (!LowerAscii(file.Value(TEXT("Version"), TEXT("Signature"))).starts_with('$'))
        Refuse(path, "it has no [Version] section with a signature, so it is no set-up information file");
    const WideText kind = file.Value(TEXT("Version"), TEXT("Class"));
    if (!kind.empty() && !IsSameName(kind, TEXT("Printer"))) Refuse(path, "it is not about printers");
    return file;
}

void InfFile::Parse(WideView text) {
    std::vector<InfLine>* section = nullptr;
    while (!text.empty()) {
        const WideText line = TakeLine(text);
        if (line.empty() || line[0] == ';') continue;
        const size_t end = line.find(']');
        if (line[0] == '[' && end != WideText::npos) {
            section = &sections_[LowerAscii(Trimmed(WideView(line).substr(1, end - 1)))];
        } else if (section != nullptr) {
            section->push_back(ParseLine(line));
        }
    }
}

void InfFile::PutStringsIn() {
    std::map<WideText, WideText> strings;
    if (const auto* lines = Find(TEXT("Strings")))
        for (const InfLine& line : *lines)
            strings.emplace(LowerAscii(line.key), line.values.front());
    for (auto& [name, lines] : sections_) {
        for (InfLine& line : lines) {
            line.key = WithStrings(line.key, strings);
            for (WideText& value : line.values)
                value = WithStrings(value, strings);
        }
    }
}

const std::vector<InfLine>* InfFile::Find(WideView section) const {
    const auto found = sections_.find(LowerAscii(section));
    return found != sections_.end() ? &found->second : nullptr;
}

std::vector<WideText> InfFile::Values(WideView section, WideView key) const {
    if (const auto* lines = Find(section))
        for (const InfLine& line : *lines)
            if (IsSameName(line.key, key)) return line.values;
    return {};
}

WideText InfFile::Value(WideView section, WideView key) const {
    const std::vector<WideText> values = Values(section, key);
    return values.empty() ? WideText() : values.front();
}

}  // namespace printui
