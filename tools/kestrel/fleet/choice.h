// Which printers a command line means.
#pragma once

#include <string>
#include <vector>

#include "kestrel/installation/spooler.h"

namespace cli {

// What the line says of printers.
struct PrinterChoice final {
    std::vector<std::string> written;  // names, and patterns with * and ?
    bool all = false;                  // every printer of the product

    // Whether its results are those of several printers, however many match.
    [[nodiscard]] bool IsSeveral() const;
    // Of one printer: its name, empty when nothing is written.
    [[nodiscard]] std::string One() const { return written.empty() ? std::string() : written.front(); }
};

// What there is to choose from.
struct Installed final {
    std::vector<InstalledPrinter> printers;
    std::vector<std::string> drivers;  // the product's
};

// Whether a printer is meant by a name or pattern; letters are taken without case, as the spooler does.
[[nodiscard]] bool IsMeant(const std::string& printer, const std::string& written);

// The names, each once, in the order in which they are written; those of a pattern as the spooler lists them.
// A name without * and ? need not be installed: the library says what is wrong with it. Throws a NoPrinter
// failure for a pattern that nothing matches, and for a product without printers.
[[nodiscard]] std::vector<std::string> ChosenPrinters(const PrinterChoice& choice,
                                                      const Installed& installed);

// For whoever watches: the installed ones among those that are meant; nothing written means the product's.
[[nodiscard]] std::vector<InstalledPrinter> PrintersToWatch(const PrinterChoice& choice,
                                                            const Installed& installed);

}  // namespace cli
