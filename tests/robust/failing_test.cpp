// Every call that can fail does, beside a printer that answers.
#include <gtest/gtest.h>

#include "child_process.h"
#include "desk.h"
#include "effort.h"

namespace {

TEST(FailingCalls, Whatever_call_fails_the_reason_is_told_nothing_leaks_and_work_goes_on) {
    if (kIsSanitized) GTEST_SKIP() << "the sanitizer's allocator cannot be made to fail";
    ASSERT_TRUE(InstallDesk());
    ChildProcess printer({KESTREL_VPRINTER, "--port", "USB001", "--trace", "none"});
    ASSERT_EQ(0u, printer.ReadLine().value_or("").find("ready"));
    ChildProcess scenarios({FAILING_SCENARIOS, effort.seed, std::to_string(effort.Of(0, 2))});
    while (const auto line = scenarios.ReadLine(std::chrono::minutes(30)))
        std::printf("%s\n", line->c_str()), std::fflush(stdout);
    EXPECT_EQ(0, scenarios.Wait());
    printer.Terminate();
    EXPECT_EQ(0, printer.Wait());
}

}  // namespace
