// kestrel clock: the printer's time, read, set, and taken from this computer.
#include <fmt/core.h>

#include <array>
#include <charconv>

#include "kestrel/commands/commands.h"
#include "kestrel/printer/device_facts.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

std::string Text(const WallTime& time) {
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}", time.year, time.month, time.day, time.hour,
                       time.minute);
}

Report ShowClock(Context& context) {
    const Library& library = context.GetPrinter().GetLibrary();
    const WallTime time = ReadWallTime(library, context.Options().timeoutMs);
    const std::string rtc = ReadClockText(library, context.Options().timeoutMs);
    return {fmt::format("{}\nclock text {}\n", Text(time), ForTerminal(rtc)),
            {{"time", Text(time)}, {"clockText", rtc}},
            {}};
}

// YYYY-MM-DD HH:MM, also with a T between; the printer judges the numbers.
WallTime ParseTime(const std::string& written) {
    struct Part {
        size_t begin;
        size_t length;
        uint32_t WallTime::*field;
    };
    static constexpr std::array<Part, 5> kParts = {{{0, 4, &WallTime::year},
                                                    {5, 2, &WallTime::month},
                                                    {8, 2, &WallTime::day},
                                                    {11, 2, &WallTime::hour},
                                                    {14, 2, &WallTime::minute}}};
    static constexpr std::string_view kForm = "0000-00-00 00:00";
    WallTime time;
    bool fits = written.size() == kForm.size() && (written[10] == ' ' || written[10] == 'T');
    for (const size_t position : {4U, 7U, 13U})
        fits = fits && written[position] == kForm[position];
    for (const Part& part : kParts) {
        if (!fits) break;
        const char* const begin = written.data() + part.begin;
        const auto [end, error] = std::from_chars(begin, begin + part.length, time.*part.field);
        fits = error == std::errc() && end == begin + part.length;
    }
    if (fits) return time;
    throw ValueFailure(fmt::format("\"{}\" is no time", written), "write it as \"2026-11-24 18:30\"");
}

Report SetClock(Context& context, const std::string& written) {
    const WallTime time = ParseTime(written);
    Demand<decltype(SetDeviceTime)>(
        context.GetPrinter().GetLibrary(), "SetDeviceTime", {"cannot set the clock"},
        static_cast<uint16_t>(time.year), static_cast<uint8_t>(time.month), static_cast<uint8_t>(time.day),
        static_cast<uint8_t>(time.hour), static_cast<uint8_t>(time.minute), context.Options().timeoutMs);
    return {fmt::format("the clock is set to {}\n", Text(time)), {{"time", Text(time)}}, {}};
}

Report SyncClock(Context& context) {
    Demand<decltype(SetCurrentTimeRTC)>(
        context.GetPrinter().GetLibrary(), "SetCurrentTimeRTC",
        {"cannot set the clock from this computer's",
         Exchange::Write,
         {ExitCode::OwnFault, "this computer has no identity", "check the rights on the registry"}},
        context.Options().timeoutMs);
    return {"the clock is that of this computer\n", tools::Json::EmptyObject(), {}};
}

}  // namespace

void AddClock(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("clock", "Read and set the printer's clock");
    command.RequireSubcommand();

    const tools::Command show = command.AddSubcommand("show", "Print the time and the clock text");
    show.Example("kestrel clock show");
    show.OnUse([&chosen] { chosen = {"clock show", ShowClock, Reach::Several}; });

    const tools::Command set = command.AddSubcommand("set", "Set the time");
    const auto written = std::make_shared<std::string>();
    set.AddOption("TIME", *written, "YYYY-MM-DD HH:MM").Required();
    set.Example("kestrel clock set '2026-11-24 18:30'");
    set.OnUse([&chosen, written] {
        chosen = {"clock set", [written](Context& context) { return SetClock(context, *written); },
                  Reach::Several};
    });

    const tools::Command sync = command.AddSubcommand("sync", "Set the time to that of this computer");
    sync.Note("The printer also learns the time zone and the identity of this computer.");
    sync.Example("kestrel clock sync");
    sync.OnUse([&chosen] { chosen = {"clock sync", SyncClock, Reach::Several}; });
}

}  // namespace cli
