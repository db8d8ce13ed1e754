// Every call that can fail does, beside a printer that answers.
#include "effort.h"
#include "installed_printer.h"

namespace {

using FailingCalls = InstalledPrinter;

TEST_F(FailingCalls, Whatever_call_fails_the_reason_is_told_nothing_leaks_and_work_goes_on) {
    if (kIsSanitized) GTEST_SKIP() << "the sanitizer's allocator cannot be made to fail";
    StartPrinter();
    ChildProcess scenarios({FAILING_SCENARIOS, effort.seed, std::to_string(effort.Of(0, 2))});
    while (const auto line = scenarios.ReadLine(std::chrono::minutes(30)))
        std::printf("%s\n", line->c_str()), std::fflush(stdout);
    EXPECT_EQ(0, scenarios.Wait());
}

}  // namespace
