// The status monitor's log line: its parts come from other processes.
#include "statusmon/log.h"

#include <gtest/gtest.h>

namespace {

TEST(StatusmonLog, A_printer_name_makes_no_line_of_its_own) {
    const statusmon::LogEntry entry{
        {},       7, "ShoW", "shows the status window", "P\": done\n12:00:00.000 client 8\x1B[2K\xC2\x85",
        "refused"};
    const std::string line = statusmon::LogLine(entry);
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    EXPECT_NE(line.find("P\": done\\x0A12:00:00.000 client 8\\x1B[2K\\x85\": refused"), std::string::npos)
        << line;
}

}  // namespace
