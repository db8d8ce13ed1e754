// kestrel run: test files against a printer.
#include <fmt/core.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "kestrel/commands/commands.h"
#include "kestrel/output/progress.h"
#include "kestrel/testing/case_report.h"
#include "kestrel/testing/case_runner.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

struct RunOptions {
    std::vector<std::string> files;
    std::vector<std::string> set;
    std::string control;
    std::string junit;
    bool tap = false;
};

Variables GivenVariables(const std::vector<std::string>& set) {
    Variables variables;
    for (const std::string& written : set) {
        const size_t equals = written.find('=');
        if (equals == std::string::npos || equals == 0 || !WideFromUtf8(written))
            throw UsageFailure(fmt::format("--set {} gives no variable a value", ForTerminal(written)),
                               "write --set name=value");
        variables[written.substr(0, equals)] = written.substr(equals + 1);
    }
    return variables;
}

std::ofstream Opened(const std::string& path) {
    std::ofstream file;
    if (path.empty()) return file;
    file.open(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary);
    if (!file)
        throw UsageFailure(path + " cannot be written; nothing was sent", "name another file with --junit");
    return file;
}

// Tells of each case as soon as it has ended.
class Teller final {
  public:
    Teller(const Context& context, bool tap, size_t cases)
        : isSilent_(context.Options().json), isTap_(tap), paint_(context.ResultPaint()) {
        if (isTap_) fmt::print("{}", TapPlan(cases));
    }

    void Tell(size_t number, const CaseResult& result) const {
        if (isSilent_) return;
        fmt::print("{}", isTap_ ? TapText(number, result) : CaseText(result, paint_));
        std::fflush(stdout);
    }

    [[nodiscard]] std::string Summary(size_t cases, size_t failed) const {
        if (isSilent_ || isTap_) return {};
        return paint_(Colour::Bold, fmt::format("{} passed, {} failed\n", cases - failed, failed));
    }

  private:
    bool isSilent_;
    bool isTap_;
    Paint paint_;
};

Report Run(Context& context, const RunOptions& options) {
    if (options.tap && context.Options().json)
        throw UsageFailure("--tap and --json are two forms of the same results", "choose one of them");
    const Variables given = GivenVariables(options.set);
    std::vector<TestFile> files;
    size_t cases = 0;
    for (const std::string& path : options.files) {
        files.push_back(ReadTestFile(path, given, options.control));
        cases += files.back().cases.size();
    }
    std::ofstream junit = Opened(options.junit);

    const GlobalOptions& global = context.Options();
    Printer printer(context.GetLibrary(), global.product, global.printers.One(), global.timeoutMs);
    const Teller teller(context, options.tap, cases);
    std::vector<CaseResult> results;
    bool gaveUp = false;
    for (const TestFile& file : files) {
        gaveUp = RunCases(printer, file, global.timeoutMs, [&](const CaseResult& result) {
            results.push_back(result);
            teller.Tell(results.size(), result);
        });
    }
    const size_t failed = CountFailed(results);
    Report report{teller.Summary(cases, failed), CasesJson(results), {}, gaveUp};
    if (failed > 0)
        report.failure = Failure{ExitCode::CaseFailed,
                                 fmt::format("{} of {} test cases failed", failed, cases),
                                 "each says above what it expected and what it found",
                                 {},
                                 {},
                                 {}};
    if (junit.is_open() && !(junit << JUnitDocument(results)).flush())
        report.failure = Failure{ExitCode::OwnFault,
                                 options.junit + " could not be written whole",
                                 "check the free space",
                                 {},
                                 {},
                                 {}};
    return report;
}

}  // namespace

void AddRun(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("run", "Run test files against the printer");
    const auto options = std::make_shared<RunOptions>();
    command.AddOption("FILE", options->files, "JSON file of test cases").Required().TypeName("FILE");
    command.AddOption("--set", options->set, "Give a variable of the files its value; may be repeated")
        .TypeName("NAME=VALUE")
        .OneEachTime();
    command
        .AddOption("--control", options->control,
                   "Control file of the virtual printer, for cases with faults")
        .TypeName("FILE");
    command.AddFlag("--tap", options->tap, "Print results in the Test Anything Protocol");
    command.AddOption("--junit", options->junit, "Write results as JUnit XML to this file, too")
        .TypeName("FILE");
    command.Note("What a test file holds, and how to write one, is in the document testing.md.");
    command.Example("kestrel -p Office run fax.json --set redials=5",
                    "run the cases of fax.json with a value of your own");
    command.OnUse([&chosen, options] {
        chosen = {"run", [options](Context& context) { return Run(context, *options); }};
    });
}

}  // namespace cli
