// kestrel identity and capabilities: who the printer is and what it can do.
#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "kestrel/commands/commands.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

constexpr uint32_t kLargestBlock = 65000;
constexpr uint32_t kSizeBytes = 4;

struct CloudService {
    const char* name;
    const char* function;
};
constexpr std::array<CloudService, 2> kServices = {{
    {"gcp", "GetGCPConfigured"},
    {"pennant", "GetPennantConfigured"},
}};

using GetFlag = kestrel_bool(kestrel_bool*, uint32_t);

// A printer that does not know a service has no flag for it: no failure, and no value either.
std::optional<bool> ServiceFlag(const Library& library, const CloudService& service, uint32_t timeoutMs) {
    kestrel_bool configured = 0;
    if (library.Find<GetFlag>(service.function)(&configured, timeoutMs) != 0) return configured != 0;
    if (GetLastError() == ERROR_SUCCESS) return std::nullopt;
    throw FailureOfLastCall(library, fmt::format("cannot ask for the service {}", service.name),
                            Exchange::Read);
}

Report Identify(Context& context) {
    const Library& library = context.GetPrinter().GetLibrary();
    const uint32_t timeoutMs = context.Options().timeoutMs;
    uint32_t vendor = 0;
    uint32_t product = 0;
    Demand<decltype(GetVendorProductIDs)>(library, "GetVendorProductIDs",
                                          {"cannot read the USB identifiers", Exchange::Read}, &vendor,
                                          &product, timeoutMs);
    Report report;
    report.text = fmt::format("USB vendor   {:04X}\nUSB product  {:04X}\n", vendor, product);
    report.data = {{"vendor", vendor}, {"product", product}};
    for (const CloudService& service : kServices) {
        const std::optional<bool> configured = ServiceFlag(library, service, timeoutMs);
        report.text += fmt::format("{:<12} {}\n", service.name,
                                   !configured   ? "not known to this printer"
                                   : *configured ? "configured"
                                                 : "not configured");
        report.data[service.name] = configured ? tools::Json(*configured) : nullptr;
    }
    return report;
}

// The block begins with its own size, which also a call that asks for less leaves in the buffer.
std::vector<uint8_t> CapabilityBlock(const Library& library) {
    std::vector<uint8_t> block(kSizeBytes);
    const auto get = library.Find<decltype(GetCapabilities)>("GetCapabilities");
    bool got = get(block.data(), kSizeBytes, 0) != 0;
    if (!got && GetLastError() == ERROR_SUCCESS) {
        uint32_t size = 0;
        std::memcpy(&size, block.data(), sizeof(size));
        block.resize(std::clamp(size, kSizeBytes, kLargestBlock));
        got = get(block.data(), static_cast<uint32_t>(block.size()), 0) != 0;
    }
    if (got) return block;
    throw FailureOfLastCall(library,
                            Attempt{"cannot read the capability block",
                                    Exchange::Read,
                                    {ExitCode::BadReply, "the printer has no complete block",
                                     "look at the printer's reply with `kestrel raw 'ZRGetCapabilities?'`"}});
}

Report ShowCapabilities(Context& context) {
    const Library& library = context.GetPrinter().GetLibrary();
    const uint32_t timeoutMs = context.Options().timeoutMs;
    kestrel_bool upgrade = 0;
    kestrel_bool edge = 0;
    uint32_t version = 0;
    Demand<GetFlag>(library, "GetCapFWUpgrade", {"cannot read the upgrade capability", Exchange::Read},
                    &upgrade, timeoutMs);
    Demand<GetFlag>(library, "GetCapTOFEdgeOverride", {"cannot read the edge capability", Exchange::Read},
                    &edge, timeoutMs);
    Demand<decltype(GetCapRBNVer)>(library, "GetCapRBNVer", {"cannot read the RBN version", Exchange::Read},
                                   &version, timeoutMs);
    const std::vector<uint8_t> block = CapabilityBlock(library);
    const std::string bytes(block.begin(), block.end());
    const std::string letter(1, static_cast<char>(version));
    Report report;
    report.text = fmt::format("firmware upgrade   {}\ntop-of-form edge   {}\nRBN version        {}\n{}",
                              upgrade != 0 ? "yes" : "no", edge != 0 ? "yes" : "no", ForTerminal(letter),
                              HexDump(bytes));
    report.data = {{"firmwareUpgrade", upgrade != 0},
                   {"topOfFormEdge", edge != 0},
                   {"rbnVersion", version},
                   {"block", block}};
    return report;
}

}  // namespace

void AddIdentity(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("identity", "Print the USB identifiers and the cloud services of the printer");
    command.Example("kestrel identity");
    command.OnUse([&chosen] { chosen = {"identity", Identify}; });
}

void AddCapabilities(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("capabilities", "Print what the printer can do");
    command.Example("kestrel capabilities");
    command.OnUse([&chosen] { chosen = {"capabilities", ShowCapabilities}; });
}

}  // namespace cli
