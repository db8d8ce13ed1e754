// A row for each family: its heading, and its samples of one printer.
#include "kestrel/metrics/printer_metrics.h"

#include <fmt/core.h>

#include <algorithm>

namespace cli::metrics {
namespace {

/// One printer, as the rows see it.
struct Told final {
    const Snapshot& snapshot;
    const std::string labels;  // printer, port, model
    const Clock::time_point now;

    [[nodiscard]] std::string With(std::string_view name, std::string_view value) const {
        return labels + ',' + LabelText(name, value);
    }
    [[nodiscard]] std::string With(const Reason& reason) const {
        return fmt::format("{},{},{}", labels, LabelText("code", reason.code),
                           LabelText("reason", reason.word));
    }
};

void Age(const Told& told, const Reading& reading, Exposition& to) {
    to.Sample(told.labels, std::chrono::duration<double>(told.now - reading.at).count());
}

// All words, so that a state that has passed is 0 and not missing.
void State(const Told& told, const Reading& reading, Exposition& to) {
    for (const std::string_view word : StateWords())
        to.Sample(told.With("state", word), word == reading.status.word ? 1 : 0);
}

void OnUsb(const Told& told, const Reading& reading, Exposition& to) {
    to.Sample(told.labels, reading.status.onUsb ? 1 : 0);
}

void ResponseTimes(const Told& told, const Reading& reading, Exposition& to) {
    for (size_t i = 0; i < kQuestions.size(); ++i) {
        if (reading.seconds[i] > 0) to.Sample(told.With("question", kQuestions[i]), reading.seconds[i]);
    }
}

void Firmware(const Told& told, const Reading& reading, Exposition& to) {
    if (!reading.firmware) return;
    to.Sample(told.With("firmware", reading.firmware->printer), 1);
}

void FirmwareVersion(const Told& told, const Reading& reading, Exposition& to) {
    if (!reading.firmware) return;
    to.Sample(told.With("part", "customer"), reading.firmware->customer);
    to.Sample(told.With("part", "lagoon"), reading.firmware->lagoon);
}

// Of a status record in the product's layout.

constexpr double kPercent = 100;

void InkLevels(const Told& told, const StatusDetails& details, Exposition& to) {
    for (const InkLevel& ink : details.inks)
        to.Sample(told.With("ink", ink.name), ink.percent / kPercent);
}

// A word that nobody knows is a reason to look at the printer too.
void LowInks(const Told& told, const StatusDetails& details, Exposition& to) {
    for (const InkLevel& ink : details.inks)
        to.Sample(told.With("ink", ink.name), ink.state == kEnoughInk ? 0 : 1);
}

void Trays(const Told& told, const StatusDetails& details, Exposition& to) {
    to.Sample(told.With("tray", "upper"), details.upperTray / kPercent);
    to.Sample(told.With("tray", "lower"), details.lowerTray / kPercent);
}

void PhotoTray(const Told& told, const StatusDetails& details, Exposition& to) {
    to.Sample(told.labels, details.photoTray ? 1 : 0);
}

void Network(const Told& told, const StatusDetails& details, Exposition& to) {
    to.Sample(told.labels, details.networkUp ? 1 : 0);
}

void Upgrade(const Told& told, const StatusDetails& details, Exposition& to) {
    if (details.upgradePercent) to.Sample(told.labels, *details.upgradePercent / kPercent);
}

// Of the asking itself, whether or not the printer answers.

// The language monitor answers for a device that is switched off.
constexpr std::string_view kOffline = "offline";

void Up(const Told& told, Exposition& to) {
    const auto& reading = told.snapshot.reading;
    to.Sample(told.labels, reading && reading->status.word != kOffline ? 1 : 0);
}

void LastError(const Told& told, Exposition& to) {
    if (told.snapshot.reason) to.Sample(told.With(*told.snapshot.reason), 1);
}

void Responses(const Told& told, Exposition& to) {
    const auto& responses = told.snapshot.responses;
    uint64_t count = 0;
    for (size_t i = 0; i < responses.counts.size(); ++i) {
        count += responses.counts[i];
        // The bound is written as a number with a point, in both formats the same.
        const std::string bound =
            i < kResponseBounds.size() ? fmt::format("{:#}", kResponseBounds[i]) : std::string("+Inf");
        to.Sample(told.With("le", bound), static_cast<double>(count), "_bucket");
    }
    to.Sample(told.labels, static_cast<double>(count), "_count");
    to.Sample(told.labels, responses.sum, "_sum");
}

void Errors(const Told& told, Exposition& to) {
    for (const auto& [reason, count] : told.snapshot.errors)
        to.Sample(told.With(reason), static_cast<double>(count));
}

template <typename... Told>
struct Row final {
    Family family;
    void (*write)(Told..., Exposition&);
};

using AnyRow = Row<const Told&>;
using ReadingRow = Row<const Told&, const Reading&>;
using DetailRow = Row<const Told&, const StatusDetails&>;

constexpr AnyRow kAskingRows[] = {
    {{"kestrel_up", Kind::Gauge, "Whether the printer answered when it was asked last."}, Up},
    {{"kestrel_last_error", Kind::Info, "What failed when the printer was asked last."}, LastError},
};
constexpr ReadingRow kReadingRows[] = {
    {{"kestrel_age_seconds", Kind::Gauge, "How old what is told of the printer is."}, Age},
    {{"kestrel_state", Kind::Gauge, "1 for the state that the printer is in, 0 for every other."}, State},
    {{"kestrel_usb_connected", Kind::Gauge, "Whether the printer is on a USB port, not on a network."},
     OnUsb},
    {{"kestrel_response_seconds", Kind::Gauge, "How long the last answer took, by what was asked."},
     ResponseTimes},
    {{"kestrel_firmware", Kind::Info, "The printer's own name of its firmware."}, Firmware},
    {{"kestrel_firmware_version", Kind::Gauge, "Numbers of the firmware's parts; more is newer."},
     FirmwareVersion},
};
constexpr DetailRow kDetailRows[] = {
    {{"kestrel_ink_ratio", Kind::Gauge, "What is left of an ink, of 1."}, InkLevels},
    {{"kestrel_ink_low", Kind::Gauge, "Whether the printer calls an ink low or empty."}, LowInks},
    {{"kestrel_tray_ratio", Kind::Gauge, "How full a tray is, of 1."}, Trays},
    {{"kestrel_photo_tray_engaged", Kind::Gauge, "Whether the photo tray is engaged."}, PhotoTray},
    {{"kestrel_network_connected", Kind::Gauge, "Whether the printer's wireless network is up."}, Network},
    {{"kestrel_upgrade_ratio", Kind::Gauge, "How far an upgrade of the firmware is, of 1; only during one."},
     Upgrade},
};
constexpr AnyRow kSummedRows[] = {
    {{"kestrel_exchange_seconds", Kind::Histogram, "How long the printer's answers took."}, Responses},
    {{"kestrel_errors", Kind::Counter, "How often something that was asked of the printer failed."}, Errors},
};

constexpr Family kBuild = {"kestrel_build", Kind::Info, "The client and the library that asks the printers."};
constexpr Family kPrinters = {"kestrel_printers", Kind::Gauge, "Printers that are asked."};

struct ProgramRow final {
    Family family;
    double (*value)(const ProgramFigures&);
};
constexpr ProgramRow kProgramRows[] = {
    {{"kestrel_scrapes", Kind::Counter, "How often this exporter was asked."},
     [](const ProgramFigures& program) { return static_cast<double>(program.scrapes); }},
    {{"process_cpu_seconds", Kind::Counter, "Processor time of the exporter, its own and the system's."},
     [](const ProgramFigures& program) { return program.cpuSeconds; }},
    {{"process_resident_memory_bytes", Kind::Gauge, "Memory of the exporter."},
     [](const ProgramFigures& program) { return program.residentBytes; }},
    {{"process_start_time_seconds", Kind::Gauge, "When the exporter was started, since 1970."},
     [](const ProgramFigures& program) { return program.startTime; }},
};

const Reading* ReadingOf(const Told& told) {
    return told.snapshot.reading ? &*told.snapshot.reading : nullptr;
}
const StatusDetails* DetailsOf(const Told& told) {
    const Reading* const reading = ReadingOf(told);
    return reading != nullptr && reading->status.details ? &*reading->status.details : nullptr;
}

}  // namespace

std::string MetricsText(Format format, const std::vector<Snapshot>& printers, const Versions& versions,
                        const std::optional<ProgramFigures>& program, Clock::time_point now) {
    std::vector<Told> all;
    for (const Snapshot& snapshot : printers) {
        const InstalledPrinter& printer = snapshot.printer;
        all.push_back({snapshot,
                       fmt::format("{},{},{}", LabelText("printer", printer.name),
                                   LabelText("port", printer.port), LabelText("model", printer.driver)),
                       now});
    }
    Exposition to(format);
    const auto writeAll = [&](const auto& rows, const auto& write) {
        for (const auto& row : rows) {
            to.Begin(row.family);
            for (const Told& told : all)
                write(row, told);
        }
    };
    writeAll(kAskingRows, [&](const AnyRow& row, const Told& told) { row.write(told, to); });
    writeAll(kReadingRows, [&](const ReadingRow& row, const Told& told) {
        if (const Reading* const reading = ReadingOf(told)) row.write(told, *reading, to);
    });
    writeAll(kDetailRows, [&](const DetailRow& row, const Told& told) {
        if (const StatusDetails* const details = DetailsOf(told)) row.write(told, *details, to);
    });
    to.Begin(kBuild);
    to.Sample(fmt::format("{},{},{}", LabelText("version", versions.client),
                          LabelText("interface", fmt::format("{}", versions.interfaceNumber)),
                          LabelText("library", versions.library)),
              1);
    to.Begin(kPrinters);
    to.Sample({}, static_cast<double>(printers.size()));
    if (!program) return std::move(to).Take();

    writeAll(kSummedRows, [&](const AnyRow& row, const Told& told) { row.write(told, to); });
    for (const ProgramRow& row : kProgramRows) {
        to.Begin(row.family);
        to.Sample({}, row.value(*program));
    }
    return std::move(to).Take();
}

}  // namespace cli::metrics
