// rundll32: installs drivers and printers, and makes a printer the default one.
#include <fmt/core.h>

#include <cstdio>
#include <exception>
#include <string_view>

#include "rundll32/command_line.h"
#include "rundll32/printers.h"
#include "rundll32/refusal.h"

namespace {

using namespace printui;

void Run(const CommandLine& line) {
    if (line.action == Action::MakeDefault) return MakeDefault(line.printer);
    const Driver driver = FindDriver(InfFile::Read(line.infPath), line.infPath, WideArgument(line.model));
    if (line.action == Action::InstallDriver) return AddDriver(driver);
    CheckPort(line.port);
    if (!line.keepDriver || !HasDriver(driver.model)) AddDriver(driver);
    AddPrinter(line.baseName.empty() ? line.model : line.baseName, line.port, driver.model);
}

}  // namespace

int main(int count, char** values) {
    bool quiet = false;
    try {
        if (count < 2) {
            fmt::print("{}", UsageText());
            return 2;
        }
        if (values[1] == std::string_view(tools::kDescribeArgument)) {
            fmt::print("{}\n", tools::DescriptionJson(Description()));
            return 0;
        }
        Run(ParseCommandLine({values + 1, values + count}, quiet));
        return 0;
    } catch (const Refusal& refusal) {
        if (!quiet) fmt::print(stderr, "rundll32: {}\n{}\n", refusal.text, refusal.advice);
        return refusal.exitCode;
    } catch (const std::exception& fault) {
        if (!quiet)
            fmt::print(stderr, "rundll32: {}\nThis is a fault of the program: report it.\n", fault.what());
        return 1;
    }
}
