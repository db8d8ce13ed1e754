// Patterns looked up among the spooler's printers.
#include "kestrel/fleet/choice.h"

#include <fmt/core.h>

#include <algorithm>

#include "kestrel/failure.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

bool IsPattern(const std::string& written) {
    return written.find_first_of("*?") != std::string::npos;
}

Failure NothingFound(std::string text, const Installed& installed) {
    std::string names;
    for (const InstalledPrinter& printer : installed.printers)
        names += (names.empty() ? "" : ", ") + printer.name;
    return {ExitCode::NoPrinter,
            std::move(text),
            names.empty() ? "no printer is installed; add one with `kestrel printers add NAME --port PORT`"
                          : "installed are: " + names,
            {},
            {},
            {}};
}

bool IsProducts(const InstalledPrinter& printer, const Installed& installed) {
    return std::ranges::find(installed.drivers, printer.driver) != installed.drivers.end();
}

}  // namespace

bool PrinterChoice::IsSeveral() const {
    return all || written.size() > 1 || std::ranges::any_of(written, IsPattern);
}

bool IsMeant(const std::string& printer, const std::string& written) {
    const std::string name = LowerAscii(printer);
    const std::string wanted = LowerAscii(written);
    return name == wanted || (IsPattern(wanted) && GlobMatches(wanted, name));
}

std::vector<std::string> ChosenPrinters(const PrinterChoice& choice, const Installed& installed) {
    std::vector<std::string> names;
    const auto add = [&names](const std::string& name) {
        const auto isSame = [&name](const std::string& other) {
            return LowerAscii(other) == LowerAscii(name);
        };
        if (std::ranges::none_of(names, isSame)) names.push_back(name);
    };
    for (const std::string& written : choice.written) {
        if (!IsPattern(written)) {
            add(written);
            continue;
        }
        const size_t before = names.size();
        bool isKnown = false;
        for (const InstalledPrinter& printer : installed.printers) {
            if (!IsMeant(printer.name, written)) continue;
            isKnown = true;
            add(printer.name);
        }
        if (!isKnown && names.size() == before)
            throw NothingFound(fmt::format("no installed printer matches \"{}\"", written), installed);
    }
    if (choice.all) {
        for (const InstalledPrinter& printer : installed.printers)
            if (IsProducts(printer, installed)) add(printer.name);
        if (names.empty()) throw NothingFound("no installed printer uses a driver of the product", installed);
    }
    return names;
}

std::vector<InstalledPrinter> PrintersToWatch(const PrinterChoice& choice, const Installed& installed) {
    const bool wantsProducts = choice.all || choice.written.empty();
    std::vector<InstalledPrinter> printers;
    for (const InstalledPrinter& printer : installed.printers) {
        const auto isThis = [&printer](const std::string& written) { return IsMeant(printer.name, written); };
        if ((wantsProducts && IsProducts(printer, installed)) || std::ranges::any_of(choice.written, isThis))
            printers.push_back(printer);
    }
    return printers;
}

}  // namespace cli
