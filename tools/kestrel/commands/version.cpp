#include <fmt/format.h>

#include "kestrel/commands/commands.h"

namespace cli {
namespace {

Report Version(Context& context) {
    const Library& library = context.GetLibrary();
    const std::uint32_t sdk = library.Find<decltype(GetSDKVersion)>("GetSDKVersion")();
    return {fmt::format("kestrel {}\nlibrary {} (interface {})\n", KESTREL_VERSION, library.Path(), sdk),
            {{"client", KESTREL_VERSION}, {"library", library.Path()}, {"interface", sdk}},
            {}};
}

}  // namespace

void AddVersion(CLI::App& app, Chosen& chosen) {
    CLI::App* const command =
        app.add_subcommand("version", "Print the versions of this program and the library");
    command->footer("Example: kestrel version");
    command->callback([&chosen] { chosen = {"version", Version}; });
}

}  // namespace cli
