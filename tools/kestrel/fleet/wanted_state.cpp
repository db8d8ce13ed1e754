// One reader for each form; what they find is looked up in the catalogue at one place.
#include "kestrel/fleet/wanted_state.h"

#include <fmt/core.h>

#include <algorithm>

#include "kestrel/failure.h"
#include "kestrel/fleet/choice.h"
#include "kestrel/settings/settings.h"
#include "kestrel/text/text.h"
#include "shared/file.h"
#include "shared/json.h"

namespace cli {
namespace {

constexpr const char* kDumpFormat = "kestrel-dump";
constexpr std::string_view kBlanks = " \t\r";

std::string_view Trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

// Quotes keep the blanks at a text's ends.
std::string_view Unquoted(std::string_view text) {
    const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

Failure At(const std::string& place, Failure failure) {
    failure.text = place + ": " + failure.text;
    return failure;
}

Failure WrongFile(const std::string& place, const std::string& problem) {
    return UsageFailure(place + ": " + problem, "`kestrel apply --help` shows what such a file looks like");
}

void Want(WantedPart& part, const std::string& place, std::string_view name, std::string_view written) {
    try {
        const catalogue::Row& row = FindWritableSetting(name);
        static_cast<void>(FindReadableSetting(name));
        const auto isSame = [&row](const WantedSetting& other) { return other.row == &row; };
        if (std::ranges::any_of(part.settings, isSame))
            throw UsageFailure(fmt::format("{} stands there twice", row.name), "leave one of them out");
        part.settings.push_back({&row, ParseValue(row, written)});
    } catch (const Failure& failure) {
        throw At(place, failure);
    }
}

WantedState ReadLines(std::string_view text, const std::string& name) {
    WantedState state;
    state.parts.emplace_back();
    size_t number = 0;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = Trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::string place = fmt::format("{}:{}", name, ++number);
        if (line.empty() || line.front() == '#' || line.front() == ';') continue;
        if (line.front() == '[') {
            if (line.back() != ']' || line.size() < 3)
                throw WrongFile(place, "expected [PRINTER], a name or a pattern in brackets");
            state.parts.push_back({std::string(Trimmed(line.substr(1, line.size() - 2))), {}});
            continue;
        }
        const size_t sign = line.find('=');
        if (sign == std::string_view::npos) throw WrongFile(place, "expected KEY = VALUE");
        Want(state.parts.back(), place, Trimmed(line.substr(0, sign)),
             Unquoted(Trimmed(line.substr(sign + 1))));
    }
    return state;
}

// As a person writes it.
std::string AsWritten(const tools::Json& value) {
    if (value.IsText()) return value.Text();
    if (value.IsFlag()) return value.Flag() ? "yes" : "no";
    if (value.IsInteger()) return value.Dump();
    throw tools::JsonError("expected a text, a number, true or false");
}

void ReadSettings(WantedPart& part, const tools::Json& settings, const std::string& name) {
    for (const auto& [key, value] : settings.Members())
        Want(part, name, key, AsWritten(value));
}

// Of a dump what can be set again is wanted: it says more than that.
void ReadDump(WantedState& state, const tools::Json& document, const std::string& name) {
    state.isDump = true;
    WantedPart& part = state.parts.emplace_back();
    for (const auto& [key, value] : document.At("settings").Members()) {
        const catalogue::Row& row = FindSetting(key);
        const bool isMasked = row.IsSecret() && document.At("secrets") != "included";
        if (!row.CanWrite() || isMasked || value.IsObject())
            ++state.leftOut;
        else
            Want(part, name, key, AsWritten(value));
    }
}

WantedState ReadJson(std::string_view text, const std::string& name) {
    WantedState state;
    try {
        const tools::Json document = tools::Json::Parse(text);
        const tools::Json* const format = document.Find("format");
        if (format != nullptr && *format == kDumpFormat) {
            ReadDump(state, document, name);
            return state;
        }
        for (const auto& [member, value] : document.Members()) {
            if (member == "settings") {
                ReadSettings(state.parts.emplace_back(), value, name);
            } else if (member == "printers") {
                for (const auto& [printers, settings] : value.Members())
                    ReadSettings(state.parts.emplace_back(WantedPart{printers, {}}), settings, name);
            } else {
                throw WrongFile(name, fmt::format("\"{}\" is neither settings nor printers", member));
            }
        }
    } catch (const tools::JsonError& error) {
        throw WrongFile(name, error.what());
    }
    std::stable_partition(state.parts.begin(), state.parts.end(),
                          [](const WantedPart& part) { return part.printers.empty(); });
    return state;
}

}  // namespace

std::vector<WantedSetting> WantedState::For(const std::string& printer) const {
    std::vector<WantedSetting> wanted;
    for (const WantedPart& part : parts) {
        if (!part.printers.empty() && !IsMeant(printer, part.printers)) continue;
        for (const WantedSetting& setting : part.settings) {
            const auto same = std::ranges::find(wanted, setting.row, &WantedSetting::row);
            if (same == wanted.end())
                wanted.push_back(setting);
            else
                same->value = setting.value;
        }
    }
    return wanted;
}

WantedState ParseWantedState(std::string_view written, const std::string& name) {
    const std::string_view text = WithoutByteOrderMark(written);
    const size_t first = text.find_first_not_of(" \t\r\n");
    const bool isJson = first != std::string_view::npos && text[first] == '{';
    return isJson ? ReadJson(text, name) : ReadLines(text, name);
}

WantedState LoadWantedState(const std::string& path) {
    const std::optional<std::string> text = tools::ReadFile(path);
    if (!text)
        throw UsageFailure(fmt::format("the file {} cannot be read", path), "name a file that can be read");
    return ParseWantedState(*text, path);
}

}  // namespace cli
