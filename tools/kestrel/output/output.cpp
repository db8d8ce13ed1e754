// Text with colours, tables and one JSON document.
#include "kestrel/output/output.h"

#include <fmt/core.h>
#include <kestrel/sdk_text.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "kestrel/text/text.h"
#include "shared/process.h"

namespace cli {
namespace {

constexpr int kDocumentVersion = 1;

bool ColourWanted(std::FILE* stream, bool noColour) {
    return AreColoursWanted(noColour) && tools::IsTerminal(stream);
}

const char* EscapeSequence(Colour colour) {
    switch (colour) {
        case Colour::Bold:
            return "\x1b[1m";
        case Colour::Dim:
            return "\x1b[2m";
        case Colour::Red:
            return "\x1b[31m";
    }
    return "";
}

// Characters, not bytes: continuation bytes take no place on the screen.
size_t Width(std::string_view utf8) {
    return static_cast<size_t>(std::count_if(
        utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

int ExitStatus(const Report& report) {
    return report.failure ? static_cast<int>(report.failure->exit) : report.exitStatus;
}

// A difference at one printer must not hide that another did not answer.
int ExitStatus(const std::vector<PrinterReport>& reports) {
    const auto failed = std::ranges::find_if(
        reports, [](const PrinterReport& printer) { return printer.report.failure.has_value(); });
    if (failed != reports.end()) return ExitStatus(failed->report);
    const auto first = std::ranges::find_if(
        reports, [](const PrinterReport& printer) { return ExitStatus(printer.report) != 0; });
    return first == reports.end() ? 0 : ExitStatus(first->report);
}

// A wrong command line or value, before any printer was asked.
bool IsWrongForAll(const std::vector<PrinterReport>& reports) {
    return std::ranges::all_of(reports, [&](const PrinterReport& printer) {
        const std::optional<Failure>& failure = printer.report.failure;
        return failure && !failure->code && printer.report.text.empty() &&
               failure->text == reports.front().report.failure->text;
    });
}

// One line stands behind the name, several below it.
std::string TextUnderName(const PrinterReport& printer, const Paint& paint) {
    const std::string& text = printer.report.text;
    const std::string heading = paint(Colour::Bold, ForTerminal(printer.printer) + ":");
    if (text.empty()) return {};
    if (text.find('\n') >= text.size() - 1) return heading + " " + text;
    std::string indented = heading + "\n";
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        indented += "  " + text.substr(at, end - at);
        at = end;
    }
    return indented;
}

void Write(std::FILE* stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
}

// A full disk behind a redirection must not look like success.
int WriteOut(std::string_view results, std::string_view failures, int exit) {
    Write(stdout, results);
    const bool complete = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    Write(stderr, failures);
    if (complete || exit != 0) return exit;
    Write(stderr, "kestrel: the results could not be written to standard output\n");
    return static_cast<int>(ExitCode::OwnFault);
}

// What `report` says, into a document.
void AddResults(tools::Json& document, const Report& report) {
    document["exitCode"] = ExitStatus(report);
    for (const auto& [name, value] : report.data.Members())
        document[name] = value;
    if (report.failure) document["error"] = FailureJson(*report.failure);
}

}  // namespace

std::string Paint::operator()(Colour colour, std::string_view text) const {
    return enabled_ ? fmt::format("{}{}\x1b[0m", EscapeSequence(colour), text) : std::string(text);
}

bool AreColoursWanted(bool noColour) {
    const char* const refused = std::getenv("NO_COLOR");
    return !noColour && (refused == nullptr || *refused == '\0');
}
Paint PaintForResults(bool noColour) {
    return Paint(ColourWanted(stdout, noColour));
}
Paint PaintForErrors(bool noColour) {
    return Paint(ColourWanted(stderr, noColour));
}

std::string AlignedTable(const std::vector<std::vector<std::string>>& rows, const Paint& paint) {
    std::vector<size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], Width(row[i]));
    }

    std::string table;
    for (const auto& row : rows) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i) {
            line += row[i];
            if (i + 1 < row.size()) line.append(widths[i] - Width(row[i]) + 2, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        table += (&row == &rows.front() ? paint(Colour::Bold, line) : line) + '\n';
    }
    return table;
}

tools::Json FailureJson(const Failure& failure) {
    tools::Json json = {{"text", failure.text}};
    if (!failure.advice.empty()) json["advice"] = failure.advice;
    if (failure.code) {
        json["code"] = *failure.code;
        json["codeText"] = CodeText(*failure.code);
    }
    if (failure.responseNumber) {
        json["responseNumber"] = *failure.responseNumber;
        json["responseText"] = KestrelFindResponse(*failure.responseNumber)->text;
    }
    if (!failure.badReply.empty()) json["badReply"] = failure.badReply;
    return json;
}

std::string JsonDocument(std::string_view command, const Report& report) {
    tools::Json document = {{"version", kDocumentVersion}, {"command", command}};
    AddResults(document, report);
    // A text that came from the command line need not be UTF-8; the document always is.
    return document.Dump(2) + '\n';
}

std::string JsonDocument(std::string_view command, const std::vector<PrinterReport>& reports) {
    tools::Json printers = tools::Json::EmptyArray();
    for (const PrinterReport& printer : reports) {
        tools::Json json = {{"printer", printer.printer}};
        AddResults(json, printer.report);
        printers.Append(std::move(json));
    }
    const tools::Json document = {{"version", kDocumentVersion},
                                  {"command", command},
                                  {"exitCode", ExitStatus(reports)},
                                  {"printers", std::move(printers)}};
    return document.Dump(2) + '\n';
}

std::string FailureText(const Failure& failure, const Paint& paint) {
    std::string text = paint(Colour::Red, "kestrel: ") + ForTerminal(failure.text);
    if (failure.code) text += fmt::format(" [{}]", CodeText(*failure.code));
    text += '\n';
    if (!failure.badReply.empty()) {
        text += fmt::format("  reply: {}\n", failure.badReply);
    }
    if (failure.responseNumber) {
        text += fmt::format("  response number: {}, {}\n", *failure.responseNumber,
                            KestrelFindResponse(*failure.responseNumber)->text);
    }
    if (!failure.advice.empty()) text += fmt::format("  {}\n", ForTerminal(failure.advice));
    return text;
}

int Print(std::string_view command, const Report& report, bool json, bool noColour) {
    if (json && !report.isTold) return WriteOut(JsonDocument(command, report), "", ExitStatus(report));
    const std::string failure =
        report.failure ? FailureText(*report.failure, PaintForErrors(noColour)) : std::string();
    return WriteOut(report.text, failure, ExitStatus(report));
}

int Print(std::string_view command, const std::vector<PrinterReport>& reports, bool json, bool noColour) {
    if (json) return WriteOut(JsonDocument(command, reports), "", ExitStatus(reports));
    if (IsWrongForAll(reports)) return Print(command, reports.front().report, json, noColour);
    std::string text;
    std::string failures;
    for (const PrinterReport& printer : reports) {
        text += TextUnderName(printer, PaintForResults(noColour));
        if (!printer.report.failure) continue;
        Failure failure = *printer.report.failure;
        failure.text = printer.printer + ": " + failure.text;
        failures += FailureText(failure, PaintForErrors(noColour));
    }
    return WriteOut(text, failures, ExitStatus(reports));
}

}  // namespace cli
