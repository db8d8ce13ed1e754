// The two formats differ in the names of headings and in the end.
#include "kestrel/metrics/exposition.h"

#include <fmt/core.h>

#include <array>
#include <cmath>

namespace cli::metrics {
namespace {

struct KindText {
    std::string_view prometheus;
    std::string_view openMetrics;
    std::string_view ending;  // of the samples' names
};
// By the numbers of Kind. Prometheus' text has no word for an info.
constexpr std::array<KindText, 4> kKinds = {{{"gauge", "gauge", ""},
                                             {"counter", "counter", "_total"},
                                             {"histogram", "histogram", ""},
                                             {"gauge", "info", "_info"}}};

const KindText& TextOf(Kind kind) {
    return kKinds[static_cast<size_t>(kind)];
}

std::string Escaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        if (c == '\\' || c == '"') escaped += '\\';
        if (c == '\n') {
            escaped += "\\n";
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::string NumberText(double value) {
    if (std::isinf(value)) return value > 0 ? "+Inf" : "-Inf";
    if (std::isnan(value)) return "NaN";
    // The shortest text that gives the number back.
    return fmt::format("{}", value);
}

}  // namespace

std::string LabelText(std::string_view name, std::string_view value) {
    return fmt::format("{}=\"{}\"", name, Escaped(value));
}

void Exposition::Begin(const Family& family) {
    family_ = family;
    const KindText& kind = TextOf(family.kind);
    const bool isOpen = format_ == Format::OpenMetrics;
    const std::string name = fmt::format("{}{}", family.name, isOpen ? "" : kind.ending);
    text_ += fmt::format("# HELP {} {}\n# TYPE {} {}\n", name, family.help, name,
                         isOpen ? kind.openMetrics : kind.prometheus);
}

void Exposition::Sample(std::string_view labels, double value, std::string_view ending) {
    text_.append(family_.name).append(TextOf(family_.kind).ending).append(ending);
    if (!labels.empty()) text_.append("{").append(labels).append("}");
    text_.append(" ").append(NumberText(value)).append("\n");
}

std::string Exposition::Take() && {
    if (format_ == Format::OpenMetrics) text_ += "# EOF\n";
    return std::move(text_);
}

}  // namespace cli::metrics
