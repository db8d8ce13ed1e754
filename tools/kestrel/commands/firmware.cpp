// kestrel firmware: versions, and the upgrade from a file.
#include <fmt/core.h>

#include <filesystem>

#include "kestrel/commands/commands.h"
#include "kestrel/output/waiting.h"
#include "kestrel/printer/device_facts.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

Report ShowFirmware(Context& context) {
    const FirmwareVersions versions =
        ReadFirmwareVersions(context.GetPrinter().GetLibrary(), context.Options().timeoutMs);
    return {fmt::format("printer   {}\ncustomer  {}\nlagoon    {}\n", ForTerminal(versions.printer),
                        versions.customer, versions.lagoon),
            FirmwareJson(versions),
            {}};
}

constexpr CodelessFailure kFileRefused = {
    ExitCode::DeviceRefused, "the printer refused the file",
    "check that the file is an upgrade for this model; the response number gives the printer's reason"};

// A relative path means nothing to the language monitor, which opens the file.
Report Upgrade(Context& context, const std::string& written) {
    const std::string path = std::filesystem::absolute(written).string();
    const WideText wide = WideArgument(path, "path");
    const Library& library = context.GetPrinter().GetLibrary();
    const Waiting waiting("handing over the file", context.ShowsProgress());
    Demand<decltype(UpgradeFW)>(
        library, "UpgradeFW",
        {fmt::format("cannot upgrade the firmware from {}", path), Exchange::Write, kFileRefused},
        wide.c_str());
    const uint32_t number = library.Find<decltype(GetLastResponseNum)>("GetLastResponseNum")();
    return {"the printer has taken the file and goes on by itself; `kestrel status` shows how far it is\n",
            {{"file", path}, {"responseNumber", number}},
            {}};
}

Report Refresh(Context& context) {
    Demand<decltype(RefreshFWCapabilities)>(
        context.GetPrinter().GetLibrary(), "RefreshFWCapabilities",
        {"the language monitor does not forget the firmware's capabilities"}, context.Options().timeoutMs);
    return {"the firmware's capabilities will be asked for anew\n", tools::Json::EmptyObject(), {}};
}

}  // namespace

void AddFirmware(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("firmware", "Print the firmware's versions, upgrade it");
    command.RequireSubcommand();

    const tools::Command show = command.AddSubcommand("show", "Print the versions");
    show.Example("kestrel firmware show");
    show.OnUse([&chosen] { chosen = {"firmware show", ShowFirmware, Reach::Several}; });

    const tools::Command upgrade = command.AddSubcommand("upgrade", "Hand an upgrade file to the printer");
    const auto path = std::make_shared<std::string>();
    upgrade.AddOption("FILE", *path, "Upgrade file").Required();
    upgrade.Note("Up to 72 s are allowed; --timeout does not count here.");
    upgrade.Example("kestrel firmware upgrade zr9900.fw");
    upgrade.OnUse([&chosen, path] {
        chosen = {"firmware upgrade", [path](Context& context) { return Upgrade(context, *path); }};
    });

    const tools::Command refresh =
        command.AddSubcommand("refresh", "Have the firmware's capabilities asked for anew");
    refresh.Example("kestrel firmware refresh");
    refresh.OnUse([&chosen] { chosen = {"firmware refresh", Refresh, Reach::Several}; });
}

}  // namespace cli
