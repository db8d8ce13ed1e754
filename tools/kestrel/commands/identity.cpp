// kestrel identity and capabilities: who the printer is and what it can do.
#include <fmt/core.h>

#include "kestrel/commands/commands.h"
#include "kestrel/printer/device_facts.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

Report Identify(Context& context) {
    const Library& library = context.GetPrinter().GetLibrary();
    const uint32_t timeoutMs = context.Options().timeoutMs;
    const UsbIdentifiers ids = ReadIdentifiers(library, timeoutMs);
    Report report;
    report.text = fmt::format("USB vendor   {:04X}\nUSB product  {:04X}\n", ids.vendor, ids.product);
    report.data = {{"vendor", ids.vendor}, {"product", ids.product}};
    for (const CloudService& service : kCloudServices) {
        const std::optional<bool> configured = ReadService(library, service, timeoutMs);
        report.text += fmt::format("{:<12} {}\n", service.name,
                                   !configured   ? "not known to this printer"
                                   : *configured ? "configured"
                                                 : "not configured");
        report.data[service.name] = configured ? tools::Json(*configured) : nullptr;
    }
    return report;
}

Report ShowCapabilities(Context& context) {
    const Library& library = context.GetPrinter().GetLibrary();
    const uint32_t timeoutMs = context.Options().timeoutMs;
    const bool upgrade = CanUpgradeFirmware(library, timeoutMs);
    const bool edge = CanOverrideTopOfForm(library, timeoutMs);
    const uint32_t version = ReadRbnVersion(library, timeoutMs);
    const std::vector<uint8_t> block = ReadCapabilityBlock(library);
    const std::string bytes(block.begin(), block.end());
    const std::string letter(1, static_cast<char>(version));
    Report report;
    report.text =
        fmt::format("firmware upgrade   {}\ntop-of-form edge   {}\nRBN version        {}\n{}",
                    upgrade ? "yes" : "no", edge ? "yes" : "no", ForTerminal(letter), HexDump(bytes));
    report.data = {
        {"firmwareUpgrade", upgrade}, {"topOfFormEdge", edge}, {"rbnVersion", version}, {"block", block}};
    return report;
}

}  // namespace

void AddIdentity(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("identity", "Print the USB identifiers and the cloud services of the printer");
    command.Example("kestrel identity");
    command.OnUse([&chosen] { chosen = {"identity", Identify, Reach::Several}; });
}

void AddCapabilities(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("capabilities", "Print what the printer can do");
    command.Example("kestrel capabilities");
    command.OnUse([&chosen] { chosen = {"capabilities", ShowCapabilities, Reach::Several}; });
}

}  // namespace cli
