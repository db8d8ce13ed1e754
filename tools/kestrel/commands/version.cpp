// kestrel version: this program's and the library's.
#include <fmt/core.h>

#include "kestrel/commands/commands.h"

namespace cli {
namespace {

Report Version(Context& context) {
    const Library& library = context.GetLibrary();
    const uint32_t sdk = library.Find<decltype(GetSDKVersion)>("GetSDKVersion")();
    return {fmt::format("kestrel {}\nlibrary {} (interface {})\n", KESTREL_VERSION, library.Path(), sdk),
            {{"client", KESTREL_VERSION}, {"library", library.Path()}, {"interface", sdk}},
            {}};
}

}  // namespace

void AddVersion(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("version", "Print the versions of this program and the library");
    command.Example("kestrel version");
    command.OnUse([&chosen] { chosen = {"version", Version}; });
}

}  // namespace cli
