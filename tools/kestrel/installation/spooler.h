#pragma once

#include <string>
#include <vector>

namespace cli {

// The printer spooler's own calls, with UTF-8 texts. All throw a Failure that carries the spooler's code.

struct InstalledPrinter final {
    std::string name;
    std::string port;
    std::string driver;
    bool bidirectional = false;
};

[[nodiscard]] std::vector<InstalledPrinter> InstalledPrinters();

void InstallPrinter(const InstalledPrinter& printer);
void RemovePrinter(const std::string& name);

// Makes the driver known to the spooler; one that is known already is no failure.
void AddDriver(const std::string& driver, const std::string& product);

// Where the driver files of this machine live; the product's lie in its subfolder "3".
[[nodiscard]] std::string DriverDirectory();

}  // namespace cli
