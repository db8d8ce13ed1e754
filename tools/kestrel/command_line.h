// What the command line says, and what a command works with.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kestrel/fleet/choice.h"
#include "kestrel/output/output.h"
#include "kestrel/printer/library.h"
#include "kestrel/printer/printer.h"
#include "shared/command_line.h"

namespace cli {

// Options that stand before or after any command.
struct GlobalOptions final {
    PrinterChoice printers;  // none: the library picks the product's printer
    uint32_t jobs = 16;      // printers that are asked at a time
    std::string product = KESTREL_PRODUCT;
    uint32_t timeoutMs = 5000;
    bool json = false;
    bool noColour = false;
    bool isOneOfSeveral = false;  // how far the work is, is shown for all of them
};

// What a command works with. The library is loaded and the printer selected when first asked for,
// so that commands about neither work without them.
class Context final {
  public:
    explicit Context(const GlobalOptions& options) : options_(options) {}

    [[nodiscard]] const GlobalOptions& Options() const { return options_; }
    [[nodiscard]] const Library& GetLibrary();
    [[nodiscard]] const Printer& GetPrinter();
    // Whether people want to see how far something is.
    [[nodiscard]] bool ShowsProgress() const { return !options_.json && !options_.isOneOfSeveral; }
    [[nodiscard]] Paint ResultPaint() const { return PaintForResults(options_.noColour || options_.json); }

  private:
    const GlobalOptions& options_;
    std::unique_ptr<Library> library_;
    std::unique_ptr<Printer> printer_;
};

// How many printers a command can be used for at once. It is called once for each of several; one that sees
// to them itself is called once.
enum class Reach { OnePrinter, Several, Itself };

// The command that the arguments chose; its work runs after the whole line has been read, of a command for
// several printers once for each, on threads of their own.
struct Chosen final {
    std::string name;
    std::function<Report(Context&)> work;
    Reach reach = Reach::OnePrinter;
    // Called once, before any printer is asked: what has to be read for all of them. Gives the printers that
    // the command itself means when the line names none.
    std::function<PrinterChoice()> prepare = {};
};

// An option whose value is a time: 500ms, 5s, 2m.
tools::Option AddTimeOption(const tools::Command& command, const std::string& name,
                            std::function<void(std::chrono::milliseconds)> take, const std::string& help);

// The installed printers, for an option or argument that names one.
[[nodiscard]] tools::Offer OfferPrinters(const std::vector<std::string>& before);

// Declares the global options and every command, or the commands alone whose names are `among` some words.
void DeclareCommandLine(const tools::Command& app, GlobalOptions& options, Chosen& chosen,
                        const std::vector<std::string>& among = {});

// Whether the commands among the arguments are all that is needed to read them. A word that is no command's
// name chooses none, so what is read is the same; not so what is wrong with a line.
[[nodiscard]] bool NamesItsCommand(const std::vector<std::string>& arguments);

}  // namespace cli
