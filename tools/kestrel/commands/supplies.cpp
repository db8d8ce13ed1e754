// kestrel supplies: the order of ink and the like.
#include "kestrel/commands/commands.h"

namespace cli {
namespace {

constexpr CodelessFailure kRefused = {ExitCode::DeviceRefused,
                                      "the printer cannot be asked and the status monitor refuses",
                                      "check that the printer is switched on and connected, then try again"};

Report Order(Context& context) {
    Demand<decltype(OrderSupplies)>(context.GetPrinter().GetLibrary(), "OrderSupplies",
                                    {"cannot order supplies", Exchange::Write, kRefused});
    return {"an order has been started\n", tools::Json::EmptyObject(), {}};
}

}  // namespace

void AddSupplies(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("supplies", "Order ink and other supplies");
    command.RequireSubcommand();
    const tools::Command order = command.AddSubcommand("order", "Start an order");
    order.Note(
        "The printer is asked for 4 s, and after it the status monitor for 8 s; --timeout does not count "
        "here.");
    order.Example("kestrel supplies order");
    order.OnUse([&chosen] { chosen = {"supplies order", Order}; });
}

}  // namespace cli
