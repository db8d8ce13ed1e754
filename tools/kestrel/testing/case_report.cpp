// Text, TAP, JUnit and JSON, each from the same results.
#include "kestrel/testing/case_report.h"

#include <fmt/core.h>

#include <algorithm>

#include "kestrel/text/text.h"

namespace cli {
namespace {

constexpr double kMsPerSecond = 1000;

// Between quotes or tags. Control characters have no place in XML, however they are written.
std::string Xml(std::string_view text) {
    std::string escaped;
    for (const char c : ForTerminal(text)) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

// A # would begin a directive.
std::string TapName(const CaseResult& result) {
    std::string name;
    for (const char c : ForTerminal(fmt::format("{}: {}", result.file, result.name)))
        name += c == '#' ? "\\#" : std::string(1, c);
    return name;
}

double Seconds(std::chrono::milliseconds time) {
    return static_cast<double>(time.count()) / kMsPerSecond;
}

template <typename Results>
std::string SuiteText(const std::string& file, const Results& results) {
    std::string cases;
    size_t failed = 0;
    std::chrono::milliseconds took{0};
    for (const CaseResult& result : results) {
        took += result.took;
        cases += fmt::format(R"(    <testcase classname="{}" name="{}" time="{:.3f}")", Xml(file),
                             Xml(result.name), Seconds(result.took));
        if (result.HasPassed()) {
            cases += "/>\n";
            continue;
        }
        ++failed;
        cases += fmt::format(">\n      <failure message=\"{}\">{}</failure>\n    </testcase>\n",
                             Xml(result.problem), Xml(fmt::format("{}: {}", result.place, result.problem)));
    }
    return fmt::format(
        "  <testsuite name=\"{}\" tests=\"{}\" failures=\"{}\" time=\"{:.3f}\">\n{}  </testsuite>\n",
        Xml(file), results.size(), failed, Seconds(took), cases);
}

}  // namespace

std::string CaseText(const CaseResult& result, const Paint& paint) {
    if (result.HasPassed())
        return fmt::format("passed  {} {}\n", ForTerminal(result.name),
                           paint(Colour::Dim, fmt::format("({} ms)", result.took.count())));
    return fmt::format("{}  {}\n        {}: {}\n", paint(Colour::Red, "FAILED"), ForTerminal(result.name),
                       ForTerminal(result.place), ForTerminal(result.problem));
}

std::string TapPlan(size_t cases) {
    return fmt::format("TAP version 13\n1..{}\n", cases);
}

std::string TapText(size_t number, const CaseResult& result) {
    std::string text =
        fmt::format("{} {} - {}\n", result.HasPassed() ? "ok" : "not ok", number, TapName(result));
    if (!result.HasPassed()) {
        // A text of JSON is one of YAML.
        text += fmt::format("  ---\n  at: {}\n  message: {}\n  ...\n", tools::Json(result.place).Dump(),
                            tools::Json(result.problem).Dump());
    }
    return text;
}

std::string JUnitDocument(const std::vector<CaseResult>& results) {
    std::string suites;
    for (auto begin = results.begin(); begin != results.end();) {
        const auto end = std::find_if(begin, results.end(),
                                      [&](const CaseResult& other) { return other.file != begin->file; });
        suites += SuiteText(begin->file, std::vector<CaseResult>(begin, end));
        begin = end;
    }
    return fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites tests=\"{}\" "
        "failures=\"{}\">\n{}</testsuites>\n",
        results.size(), CountFailed(results), suites);
}

tools::Json CasesJson(const std::vector<CaseResult>& results) {
    tools::Json cases = tools::Json::EmptyArray();
    for (const CaseResult& result : results) {
        tools::Json row = {{"file", result.file},
                           {"name", result.name},
                           {"passed", result.HasPassed()},
                           {"ms", result.took.count()}};
        if (!result.HasPassed()) row["problem"] = fmt::format("{}: {}", result.place, result.problem);
        cases.Append(std::move(row));
    }
    const size_t failed = CountFailed(results);
    return {{"passed", results.size() - failed}, {"failed", failed}, {"cases", std::move(cases)}};
}

size_t CountFailed(const std::vector<CaseResult>& results) {
    return static_cast<size_t>(
        std::ranges::count_if(results, [](const CaseResult& result) { return !result.HasPassed(); }));
}

}  // namespace cli
