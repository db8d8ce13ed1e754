// kestrel raw: a request of the command language as it stands.
#include <fmt/core.h>

#include "kestrel/commands/commands.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

struct RawOptions {
    std::string text;
    bool hex = false;
};

Report Raw(Context& context, const RawOptions& options) {
    const std::optional<std::string> request = BytesFromReadable(options.text);
    if (!request) {
        throw UsageFailure("the request has a backslash that stands for nothing",
                           "write \\xNN for a byte (two hexadecimal digits) and \\\\ for a backslash");
    }
    const RawReply reply = context.GetPrinter().Send(*request);

    Report report;
    report.text = options.hex ? HexDump(reply.bytes) : ReadableBytes(reply.bytes) + '\n';
    report.data = {{"request", ReadableBytes(*request)},
                   {"reply", ReadableBytes(reply.bytes)},
                   {"length", reply.bytes.size()},
                   {"responseNumber", reply.responseNumber}};
    return report;
}

}  // namespace

void AddRaw(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("raw", "Send one request of the command language as it stands");
    const auto options = std::make_shared<RawOptions>();
    command.AddOption("TEXT", options->text, "Request with its terminator; \\xNN is a byte, \\\\ a backslash")
        .Required();
    command.AddFlag("--hex", options->hex, "Print the reply as a table of hexadecimal bytes");
    command.Note("The reply is printed in the same notation.");
    command.Example("kestrel raw 'DeviceSettings.Fax.Redials?'");
    command.OnUse([&chosen, options] {
        chosen = {"raw", [options](Context& context) { return Raw(context, *options); }, Reach::Several};
    });
}

}  // namespace cli
