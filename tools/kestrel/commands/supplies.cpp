#include <fmt/format.h>

#include "commands.h"

namespace cli {
namespace {

// A success through the status monitor leaves the reason why the printer could not be asked.
Report Order(Context& context) {
    const Library& library = context.GetPrinter().GetLibrary();
    Demand<decltype(OrderSupplies)>(library, "OrderSupplies", {"cannot order supplies"});
    const std::uint32_t code = GetLastError();
    if (code == ERROR_SUCCESS) return {"the printer has started the order\n", {{"through", "printer"}}, {}};
    return {fmt::format("the printer cannot be asked ({}); the status monitor has started the order\n",
                        CodeText(code)),
            {{"through", "status monitor"}, {"printerError", code}},
            {}};
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
