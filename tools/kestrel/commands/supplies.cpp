#include "kestrel/commands/commands.h"

namespace cli {
namespace {

constexpr CodelessFailure kRefused = {ExitCode::kDeviceRefused,
                                      "the printer cannot be asked and the status monitor refuses",
                                      "check that the printer is switched on and connected, then try again"};

Report Order(Context& context) {
    Demand<decltype(OrderSupplies)>(context.GetPrinter().GetLibrary(), "OrderSupplies",
                                    {"cannot order supplies", Exchange::kWrite, kRefused});
    return {"an order has been started\n", nlohmann::ordered_json::object(), {}};
}

}  // namespace

void AddSupplies(CLI::App& app, Chosen& chosen) {
    CLI::App* const command = app.add_subcommand("supplies", "Order ink and other supplies");
    command->require_subcommand(1);
    CLI::App* const order = command->add_subcommand("order", "Start an order");
    order->footer(
        "The printer is asked for 4 s, and after it the status monitor for 8 s; --timeout does not count "
        "here.\n\nExample: kestrel supplies order");
    order->callback([&chosen] { chosen = {"supplies order", Order}; });
}

}  // namespace cli
