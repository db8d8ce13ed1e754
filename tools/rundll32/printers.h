// What the actions do with the spooler. All throw a Refusal when the spooler or they themselves refuse.
#pragma once

#include "rundll32/driver.h"

namespace printui {

[[nodiscard]] bool HasDriver(const WideText& model);
// Replaces a driver that is there.
void AddDriver(const Driver& driver);
// The port is one that exists: a local port, a USB port, or one that was added to the network port monitor.
void CheckPort(const std::string& port);
void AddPrinter(const std::string& name, const std::string& port, const WideText& model);
void MakeDefault(const std::string& name);

}  // namespace printui
