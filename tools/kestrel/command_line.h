// What the command line says, and what a command works with.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "kestrel/output/output.h"
#include "kestrel/printer/library.h"
#include "kestrel/printer/printer.h"
#include "shared/command_line.h"

namespace cli {

// Options that stand before or after any command.
struct GlobalOptions final {
    std::string printer;  // empty: the library picks the product's printer
    std::string product = KESTREL_PRODUCT;
    uint32_t timeoutMs = 5000;
    bool json = false;
    bool noColour = false;
};

// What a command works with. The library is loaded and the printer selected when first asked for,
// so that commands about neither work without them.
class Context final {
  public:
    explicit Context(const GlobalOptions& options) : options_(options) {}

    [[nodiscard]] const GlobalOptions& Options() const { return options_; }
    [[nodiscard]] const Library& GetLibrary();
    [[nodiscard]] const Printer& GetPrinter();
    [[nodiscard]] Paint ResultPaint() const { return PaintForResults(options_.noColour || options_.json); }

  private:
    const GlobalOptions& options_;
    std::unique_ptr<Library> library_;
    std::unique_ptr<Printer> printer_;
};

// The command that the arguments chose; its work runs after the whole line has been read.
struct Chosen final {
    std::string name;
    std::function<Report(Context&)> work;
};

// An option whose value is a time: 500ms, 5s, 2m.
tools::Option AddTimeOption(const tools::Command& command, const std::string& name,
                            std::function<void(std::chrono::milliseconds)> take, const std::string& help);

// The installed printers, for an option or argument that names one.
[[nodiscard]] tools::Offer OfferPrinters(const std::vector<std::string>& before);

// Declares the global options and every command.
void DeclareCommandLine(const tools::Command& app, GlobalOptions& options, Chosen& chosen);

}  // namespace cli
