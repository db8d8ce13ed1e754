// kestrel metrics: the printers' metrics, once or for whoever asks.
#include <fmt/core.h>

#include <algorithm>
#include <atomic>
#include <cstdio>

#include "http/visitor.h"
#include "kestrel/commands/commands.h"
#include "kestrel/installation/product_configuration.h"
#include "kestrel/metrics/exporter_module.h"
#include "kestrel/metrics/printer_metrics.h"
#include "kestrel/metrics/watched_printers.h"
#include "kestrel/output/waiting.h"
#include "shared/file.h"
#include "shared/process.h"
#include "shared/user_error.h"

namespace cli {
namespace {

using metrics::Format;
using std::chrono::milliseconds;

struct MetricsOptions {
    std::string file;  // empty: standard output
    std::string format = "prometheus";
    std::optional<http::Address> listen;
    std::string tokenFile;
    milliseconds patience{3000};
};

// Those that are installed at this moment: an exporter lives long.
std::vector<InstalledPrinter> PrintersMeant(const GlobalOptions& options) {
    return PrintersToWatch(options.printers, {InstalledPrinters(), ConfiguredDrivers(options.product)});
}

metrics::Versions VersionsOf(const Library& library) {
    return {KESTREL_VERSION, library.Find<decltype(GetSDKVersion)>("GetSDKVersion")(), library.Path()};
}

Report Once(Context& context, const MetricsOptions& options) {
    const GlobalOptions& global = context.Options();
    const Library& library = context.GetLibrary();
    metrics::WatchedPrinters watched(library, global.product, global.timeoutMs,
                                     [&] { return PrintersMeant(global); });
    const std::vector<metrics::Snapshot> printers = [&] {
        const Waiting waiting("asking the printers", !global.json);
        return watched.Ask();
    }();
    const std::string text =
        MetricsText(options.format == "openmetrics" ? Format::OpenMetrics : Format::Prometheus, printers,
                    VersionsOf(library), {}, metrics::Clock::now());
    Report report;
    if (options.file.empty()) {
        report.text = text;
        report.data["metrics"] = text;
    } else {
        if (const auto error = tools::RewriteFile(options.file, text, tools::Readers::All)) {
            throw ValueFailure(
                fmt::format("the file {} cannot be written: {}", options.file, error.message()),
                "check the folder and the free space");
        }
        report.data["file"] = options.file;
    }
    report.data["printers"] = printers.size();
    report.data["answered"] = std::ranges::count_if(
        printers, [](const metrics::Snapshot& printer) { return printer.reading.has_value(); });
    return report;
}

std::string TokenOf(const MetricsOptions& options) {
    try {
        return http::LoadToken(*options.listen, options.tokenFile, {"--listen", "--token"});
    } catch (const tools::UserError& error) {
        throw UsageFailure(error.what(), {});
    }
}

// Until the user has enough of it. A printer that is being asked at that moment is left as it is.
Report Serve(Context& context, const MetricsOptions& options) {
    const std::string token = TokenOf(options);
    tools::EndRequest end;
    const GlobalOptions& global = context.Options();
    const Library& library = context.GetLibrary();
    metrics::WatchedPrinters watched(library, global.product, global.timeoutMs,
                                     [&] { return PrintersMeant(global); });
    std::atomic<uint64_t> scrapes = 0;
    const auto page = [&](Format format) {
        const std::vector<metrics::Snapshot> printers = watched.AskWithin(options.patience);
        metrics::ProgramFigures figures = metrics::FiguresOfProgram();
        figures.scrapes = ++scrapes;
        return MetricsText(format, printers, VersionsOf(library), figures, metrics::Clock::now());
    };
    auto exporter = metrics::BeginExporter({*options.listen, token, page});
    const std::string url = exporter->Url();
    if (!global.json) {
        fmt::print("metrics: {}\n", url);
        std::fflush(stdout);
    }
    end.Wait();
    exporter.reset();
    return {{}, {{"url", url}, {"scrapes", scrapes.load()}}, {}};
}

void DeclareServing(const tools::Command& command, const std::shared_ptr<MetricsOptions>& options,
                    const tools::Option& file, const tools::Option& format) {
    const auto take = [options](const std::string& text) -> std::string {
        if (!metrics::CanServe()) return "this system has no exporter; write a file with --output";
        options->listen = http::ReadAddress(text);
        return options->listen ? ""
                               : "expected an address and a port, such as 127.0.0.1:9750, instead of " + text;
    };
    const tools::Option listen =
        command.AddOption("--listen", take, "Serve /metrics there until it is ended; port 0: a free one")
            .TypeName("ADDRESS:PORT")
            .Excludes(file)
            .Excludes(format);
    command
        .AddOption("--token", options->tokenFile,
                   "With --listen: file of the token that visitors must know; only needed where others reach "
                   "the address")
        .TypeName("FILE")
        .Needs(listen);
    AddTimeOption(
        command, "--patience", [options](milliseconds time) { options->patience = time; },
        "With --listen: how long an answer waits for slow printers [3s]")
        .Needs(listen);
}

}  // namespace

void AddMetrics(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("metrics", "Print the metrics of the printers for Prometheus, or serve them");
    const auto options = std::make_shared<MetricsOptions>();
    const tools::Option file =
        command.AddOption("-o,--output", options->file, "File to write [standard output]").TypeName("FILE");
    const tools::Option format = command.AddOption("--format", options->format, "What is written")
                                     .OneOf({"prometheus", "openmetrics"})
                                     .ShowsDefault();
    DeclareServing(command, options, file, format);
    command.Note(
        "All printers of the product are asked at the same time, or those of --printer. One that does not "
        "answer is no failure: its kestrel_up is 0.");
    command.Note(
        "A file is replaced whole and may be read by every account, for node_exporter's textfile collector. "
        "An exporter asks at each scrape, each printer once at a time, and tells of a slow one what it "
        "knows, "
        "with its age.");
    command.Example("kestrel metrics -o /var/lib/prometheus/node-exporter/kestrel.prom");
    command.Example("kestrel metrics --listen 127.0.0.1:9750");
    command.OnUse([&chosen, options] {
        chosen = {"metrics",
                  [options](Context& context) {
                      return options->listen ? Serve(context, *options) : Once(context, *options);
                  },
                  Reach::Itself};
    });
}

}  // namespace cli
