// A step is sent, then its answer is held against what was expected.
#include "kestrel/testing/case_runner.h"

#include <fmt/core.h>
#include <kestrel/sdk_text.h>

#include <memory>
#include <thread>

#include "kestrel/printer/device_status.h"
#include "kestrel/settings/settings.h"
#include "kestrel/settings/values.h"
#include "kestrel/testing/fault_switch.h"
#include "kestrel/testing/pattern.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kBetweenTries{50};

// What came of a step: the value or the reply, or the reply that was judged bad beside the failure.
struct Answer {
    std::string text;
    std::optional<Failure> failure;
    milliseconds took{0};
};

TestStep WithVariables(const TestStep& step, const Variables& variables) {
    TestStep result = step;
    for (std::string* const text : {&result.subject, &result.to})
        *text = Substituted(*text, variables);
    for (std::optional<std::string>* const text :
         {&result.reply, &result.value, &result.pattern, &result.error}) {
        if (*text) *text = Substituted(**text, variables);
    }
    return result;
}

std::string Sent(const Printer& printer, const TestStep& step) {
    switch (step.kind) {
        case StepKind::Raw: {
            const std::optional<std::string> request = BytesFromReadable(step.subject);
            if (!request) throw UsageFailure("the request has a backslash that stands for nothing", {});
            return ReadableBytes(printer.Send(*request).bytes);
        }
        case StepKind::Get: {
            const catalogue::Row& row = FindReadableSetting(step.subject);
            return FormatValue(row, printer.Get(row));
        }
        case StepKind::Set: {
            const catalogue::Row& row = FindWritableSetting(step.subject);
            printer.Set(row, ParseValue(row, step.to));
            return {};
        }
        case StepKind::Status:
            break;
    }
    return std::string(AskForStatus(printer.GetLibrary()).word);
}

Answer Asked(const Printer& printer, const TestStep& step) {
    Answer answer;
    const Clock::time_point start = Clock::now();
    try {
        answer.text = Sent(printer, step);
    } catch (const Failure& failure) {
        answer.failure = failure;
        answer.text = failure.badReply;
    }
    answer.took = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
    return answer;
}

std::string ErrorText(uint32_t code) {
    const KestrelErrorText* const known = KestrelFindError(code);
    return known != nullptr ? fmt::format("{} ({})", CodeText(code), known->name) : CodeText(code);
}

std::string Found(const Answer& answer) {
    if (!answer.failure) return answer.text.empty() ? "success" : fmt::format("success, \"{}\"", answer.text);
    const Failure& failure = *answer.failure;
    std::string text = fmt::format("\"{}\", exit code {}", failure.text, static_cast<int>(failure.exit));
    if (failure.code) text += ", error " + ErrorText(*failure.code);
    if (!failure.badReply.empty()) text += fmt::format(", reply \"{}\"", failure.badReply);
    return text;
}

// The value as the client writes it: 1 and on are yes for a setting that is yes or no.
std::string Normal(const TestStep& step, const std::string& written) {
    if (step.kind != StepKind::Get) return written;
    const catalogue::Row& row = FindReadableSetting(step.subject);
    try {
        return FormatValue(row, ParseValue(row, written));
    } catch (const Failure&) {
        return written;  // a value that cannot be set may be read all the same
    }
}

std::string ProblemWithSuccess(const TestStep& step, const Answer& answer) {
    const bool shallFail = step.error || step.exitCode.value_or(0) != 0;
    if (!shallFail && answer.failure) return fmt::format("expected success, found {}", Found(answer));
    if (step.error) {
        const uint32_t expected = ErrorNamed(*step.error).value_or(0);
        if (!answer.failure || answer.failure->code.value_or(0) != expected)
            return fmt::format("expected the error {}, found {}", ErrorText(expected), Found(answer));
    }
    const int exit = answer.failure ? static_cast<int>(answer.failure->exit) : 0;
    if (step.exitCode && exit != static_cast<int>(*step.exitCode))
        return fmt::format("expected the exit code {}, found {}", *step.exitCode, Found(answer));
    return {};
}

std::string ProblemWithFit(const std::string& pattern, const Answer& answer) {
    const std::string problem = ProblemWithPattern(pattern);
    if (!problem.empty())
        return fmt::format("\"{}\" is no ECMAScript regular expression ({})", pattern, problem);
    if (answer.text.size() > kLongestForPattern)
        return fmt::format("expected at most {} bytes to hold the pattern against, found {}",
                           kLongestForPattern, answer.text.size());
    if (PatternFits(pattern, answer.text)) return {};
    return fmt::format("expected something that the pattern \"{}\" fits, found {}", pattern, Found(answer));
}

std::string Problem(const TestStep& step, const Answer& answer) {
    std::string problem = ProblemWithSuccess(step, answer);
    if (!problem.empty()) return problem;
    if (step.reply && *step.reply != answer.text)
        return fmt::format("expected the reply \"{}\", found {}", *step.reply, Found(answer));
    if (step.value && Normal(step, *step.value) != answer.text)
        return fmt::format("expected the value \"{}\", found {}", *step.value, Found(answer));
    if (step.pattern) problem = ProblemWithFit(*step.pattern, answer);
    if (!problem.empty()) return problem;
    if (step.withinMs && answer.took > milliseconds(*step.withinMs))
        return fmt::format("expected an answer within {} ms, found {} after {} ms", *step.withinMs,
                           Found(answer), answer.took.count());
    return {};
}

// The cases of one file; their variables go from one to the next.
class FileRun final {
  public:
    FileRun(Printer& printer, const TestFile& file, uint32_t timeoutMs)
        : printer_(printer), file_(file), timeoutMs_(timeoutMs), variables_(file.variables) {}

    [[nodiscard]] std::string Run(const TestCase& test) {
        try {
            for (uint32_t i = 1; i <= test.repeat; ++i) {
                const std::string problem = RunOnce(test);
                if (problem.empty()) continue;
                return test.repeat == 1 ? problem : fmt::format("time {} of {}: {}", i, test.repeat, problem);
            }
        } catch (const Failure& failure) {
            return failure.text + (failure.advice.empty() ? "" : "; " + failure.advice);
        }
        return {};
    }

    [[nodiscard]] bool GaveUp() const { return gaveUp_; }

  private:
    // Ends at the first problem.
    [[nodiscard]] std::string RunOnce(const TestCase& test) {
        std::unique_ptr<FaultSwitch> faults;
        if (test.faults)
            faults = std::make_unique<FaultSwitch>(file_.control, AllSubstituted(*test.faults, variables_));
        for (const TestStep& step : test.steps) {
            std::string problem = RunStep(WithVariables(step, variables_));
            if (faults && !faults->Refusal().empty())
                return "the virtual printer does not take the faults: " + faults->Refusal();
            if (problem.empty()) continue;
            if (test.steps.size() > 1)
                problem = fmt::format("step {}: {}", &step - test.steps.data() + 1, problem);
            if (faults)
                problem += fmt::format(
                    "; the faults reach a virtual printer that was started with --control {}", file_.control);
            return problem;
        }
        return {};
    }

    [[nodiscard]] std::string RunStep(const TestStep& step) {
        printer_.SetTimeout(step.timeoutMs.value_or(timeoutMs_));
        const Clock::time_point end = Clock::now() + milliseconds(step.retryMs.value_or(0));
        while (true) {
            const Answer answer = Asked(printer_, step);
            gaveUp_ = answer.failure && answer.failure->exit == ExitCode::NoAnswer;
            if (!step.capture.empty()) variables_[step.capture] = answer.text;
            std::string problem = Problem(step, answer);
            if (problem.empty() || Clock::now() >= end) return problem;
            std::this_thread::sleep_for(kBetweenTries);
        }
    }

    Printer& printer_;
    const TestFile& file_;
    uint32_t timeoutMs_;
    Variables variables_;
    bool gaveUp_ = false;
};

}  // namespace

bool RunCases(Printer& printer, const TestFile& file, uint32_t timeoutMs,
              const std::function<void(const CaseResult&)>& onEnd) {
    FileRun run(printer, file, timeoutMs);
    for (const TestCase& test : file.cases) {
        const Clock::time_point start = Clock::now();
        CaseResult result{file.path, test.name, test.place, {}, {}};
        result.problem = run.Run(test);
        result.took = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
        onEnd(result);
    }
    return run.GaveUp();
}

}  // namespace cli
