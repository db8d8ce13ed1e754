// One pass over the text: what a variable stands for is not looked at again.
#include "kestrel/testing/variables.h"

#include <fmt/core.h>

#include "kestrel/failure.h"
#include "shared/text.h"

namespace cli {
namespace {

constexpr std::string_view kOpening = "${";

const std::string& ValueOf(std::string_view name, const Variables& variables) {
    const auto found = variables.find(name);
    if (found != variables.end()) return found->second;
    std::string known;
    for (const auto& [other, value] : variables)
        known += (known.empty() ? "" : ", ") + other;
    throw UsageFailure(
        fmt::format("there is no variable ${{{}}}; known here: {}", name, known.empty() ? "none" : known),
        "give it with --set, under \"variables\", or by \"capture\" in an earlier step");
}

}  // namespace

std::string Substituted(std::string_view text, const Variables& variables) {
    std::string result;
    for (size_t at = 0; at < text.size();) {
        const size_t opening = text.find(kOpening, at);
        result += text.substr(at, opening - at);
        if (opening == std::string_view::npos) break;
        if (opening > 0 && text[opening - 1] == '$') {
            result.pop_back();
            result += kOpening;
            at = opening + kOpening.size();
            continue;
        }
        const size_t name = opening + kOpening.size();
        const size_t closing = text.find('}', name);
        if (closing == std::string_view::npos)
            throw UsageFailure(fmt::format("\"{}\" has a ${{ without its }}", text),
                               "write ${name}, or $${ for the two characters themselves");
        result += ValueOf(text.substr(name, closing - name), variables);
        at = closing + 1;
    }
    return result;
}

tools::Json AllSubstituted(const tools::Json& value, const Variables& variables) {
    if (value.IsText()) return Substituted(value.Text(), variables);
    if (value.IsArray()) {
        tools::Json items = tools::Json::EmptyArray();
        for (const tools::Json& item : value.Items())
            items.Append(AllSubstituted(item, variables));
        return items;
    }
    if (!value.IsObject()) return value;
    tools::Json object = tools::Json::EmptyObject();
    for (const auto& [name, member] : value.Members())
        object[name] = AllSubstituted(member, variables);
    return object;
}

bool HasVariables(std::string_view text) {
    return text.find(kOpening) != std::string_view::npos;
}

}  // namespace cli
