// kestrel supplies: the inks, and the order of new ones.
#include "kestrel/commands/commands.h"
#include "kestrel/printer/device_status.h"

namespace cli {
namespace {

constexpr CodelessFailure kRefused = {ExitCode::DeviceRefused,
                                      "the printer cannot be asked and the status monitor refuses",
                                      "check that the printer is switched on and connected, then try again"};

Report ShowSupplies(Context& context) {
    const DeviceStatus status = AskDeviceStatus(context.GetPrinter());
    if (!status.details) {
        throw Failure{ExitCode::BadReply,
                      "the printer's status does not tell its inks",
                      "look at the printer's display, or at `kestrel status`",
                      {},
                      {},
                      {}};
    }
    return {InksText(*status.details), {{"inks", InksJson(*status.details)}}, {}};
}

Report Order(Context& context) {
    Demand<decltype(OrderSupplies)>(context.GetPrinter().GetLibrary(), "OrderSupplies",
                                    {"cannot order supplies", Exchange::Write, kRefused});
    return {"an order has been started\n", tools::Json::EmptyObject(), {}};
}

}  // namespace

void AddSupplies(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("supplies", "Print the inks, order new ones");
    command.Example("kestrel supplies");
    // Of a line with a command below this one, that one's work is chosen already.
    command.OnUse([&chosen] {
        if (!chosen.work) chosen = {"supplies", ShowSupplies, Reach::Several};
    });
    const tools::Command order = command.AddSubcommand("order", "Start an order");
    order.Note(
        "The printer is asked for 4 s, and after it the status monitor for 8 s; --timeout does not count "
        "here.");
    order.Example("kestrel supplies order");
    order.OnUse([&chosen] { chosen = {"supplies order", Order}; });
}

}  // namespace cli
