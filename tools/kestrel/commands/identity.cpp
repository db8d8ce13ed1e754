#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "kestrel/commands/commands.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

constexpr std::uint32_t kLargestBlock = 65000;
constexpr std::uint32_t kSizeBytes = 4;

struct CloudService {
    const char* name;
    const char* function;
};
constexpr std::array<CloudService, 2> kServices = {{
    {"gcp", "GetGCPConfigured"},
    {"pennant", "GetPennantConfigured"},
}};

using GetFlag = kestrel_bool(kestrel_bool*, std::uint32_t);

// A printer that does not know a service has no flag for it: no failure, and no value either.
std::optional<bool> ServiceFlag(const Library& library, const CloudService& service,
                                std::uint32_t timeoutMs) {
    kestrel_bool configured = 0;
    if (library.Find<GetFlag>(service.function)(&configured, timeoutMs) != 0) return configured != 0;
    if (GetLastError() == ERROR_SUCCESS) return std::nullopt;
    throw FailureOfLastCall(library, fmt::format("cannot ask for the service {}", service.name),
                            Exchange::kRead);
}

Report Identify(Context& context) {
    const Library& library = context.GetPrinter().GetLibrary();
    const std::uint32_t timeoutMs = context.Options().timeoutMs;
    std::uint32_t vendor = 0;
    std::uint32_t product = 0;
    Demand<decltype(GetVendorProductIDs)>(library, "GetVendorProductIDs",
                                          {"cannot read the USB identifiers", Exchange::kRead}, &vendor,
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
        report.data[service.name] = configured ? nlohmann::ordered_json(*configured) : nullptr;
    }
    return report;
}

// The block begins with its own size, which also a call that asks for less leaves in the buffer.
std::vector<std::uint8_t> CapabilityBlock(const Library& library) {
    std::vector<std::uint8_t> block(kSizeBytes);
    const auto get = library.Find<decltype(GetCapabilities)>("GetCapabilities");
    bool got = get(block.data(), kSizeBytes, 0) != 0;
    if (!got && GetLastError() == ERROR_SUCCESS) {
        std::uint32_t size = 0;
        std::memcpy(&size, block.data(), sizeof(size));
        block.resize(std::clamp(size, kSizeBytes, kLargestBlock));
        got = get(block.data(), static_cast<std::uint32_t>(block.size()), 0) != 0;
    }
    if (got) return block;
    throw FailureOfLastCall(library,
                            Attempt{"cannot read the capability block",
                                    Exchange::kRead,
                                    {ExitCode::kBadReply, "the printer has no complete block",
                                     "look at the printer's reply with `kestrel raw 'ZRGetCapabilities?'`"}});
}

Report ShowCapabilities(Context& context) {
    const Library& library = context.GetPrinter().GetLibrary();
    const std::uint32_t timeoutMs = context.Options().timeoutMs;
    kestrel_bool upgrade = 0;
    kestrel_bool edge = 0;
    std::uint32_t version = 0;
    Demand<GetFlag>(library, "GetCapFWUpgrade", {"cannot read the upgrade capability", Exchange::kRead},
                    &upgrade, timeoutMs);
    Demand<GetFlag>(library, "GetCapTOFEdgeOverride", {"cannot read the edge capability", Exchange::kRead},
                    &edge, timeoutMs);
    Demand<decltype(GetCapRBNVer)>(library, "GetCapRBNVer", {"cannot read the RBN version", Exchange::kRead},
                                   &version, timeoutMs);
    const std::vector<std::uint8_t> block = CapabilityBlock(library);
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

void AddIdentity(CLI::App& app, Chosen& chosen) {
    CLI::App* const command =
        app.add_subcommand("identity", "Print the USB identifiers and the cloud services of the printer");
    command->footer("Example: kestrel identity");
    command->callback([&chosen] { chosen = {"identity", Identify}; });
}

void AddCapabilities(CLI::App& app, Chosen& chosen) {
    CLI::App* const command = app.add_subcommand("capabilities", "Print what the printer can do");
    command->footer("Example: kestrel capabilities");
    command->callback([&chosen] { chosen = {"capabilities", ShowCapabilities}; });
}

}  // namespace cli
