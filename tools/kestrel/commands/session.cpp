// kestrel lock, unlock, cancel and cache: what concerns the exchange with the printer itself.
#include <fmt/core.h>

#include <cstdio>

#include "kestrel/commands/commands.h"
#include "kestrel/platform.h"

namespace cli {
namespace {

constexpr CodelessFailure kNotComplied = {
    ExitCode::DeviceRefused, "the language monitor did not comply",
    "the response number gives its reason; a language monitor without a cache has nothing to switch"};

struct EndWord {
    platform::WaitEnd end;
    const char* word;
};
constexpr EndWord kEndWords[] = {{platform::WaitEnd::Time, "time"},
                                 {platform::WaitEnd::Enter, "enter"},
                                 {platform::WaitEnd::Interrupt, "interrupt"}};

const char* WordOf(platform::WaitEnd end) {
    for (const EndWord& row : kEndWords) {
        if (row.end == end) return row.word;
    }
    return "";
}

void GiveBack(const Library& library, uint32_t timeoutMs) {
    Demand<decltype(Unlock)>(library, "Unlock", {"cannot unlock the printer"}, timeoutMs);
}

// The lock is this process's: it lasts as long as the process waits here.
Report HoldLock(Context& context, std::optional<std::chrono::milliseconds> time) {
    const Library& library = context.GetPrinter().GetLibrary();
    const uint32_t timeoutMs = context.Options().timeoutMs;
    Demand<decltype(Lock)>(library, "Lock", {"cannot lock the printer"}, timeoutMs);
    if (!context.Options().json) {
        fmt::print(stderr, "locked; {}\n",
                   time ? "Ctrl-C unlocks before the time is over" : "Enter or Ctrl-C unlocks");
    }
    const platform::WaitEnd end = platform::WaitForUser(time);
    GiveBack(library, timeoutMs);
    return {"unlocked\n", {{"endedBy", WordOf(end)}}, {}};
}

Report UnlockPrinter(Context& context) {
    GiveBack(context.GetPrinter().GetLibrary(), context.Options().timeoutMs);
    return {"unlocked\n", tools::Json::EmptyObject(), {}};
}

Report CancelWork(Context& context) {
    Demand<decltype(Cancel)>(context.GetPrinter().GetLibrary(), "Cancel",
                             {"cannot cancel what the language monitor is doing"});
    return {"cancelled\n", tools::Json::EmptyObject(), {}};
}

Report SwitchCache(Context& context, bool on) {
    const char* const word = on ? "on" : "off";
    Demand<decltype(EnableCache)>(
        context.GetPrinter().GetLibrary(), "EnableCache",
        {fmt::format("cannot switch the cache {}", word), Exchange::Write, kNotComplied},
        static_cast<kestrel_bool>(on));
    return {fmt::format("cache {}\n", word), {{"cache", on}}, {}};
}

}  // namespace

void AddLock(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("lock", "Keep the printer for oneself for a while");
    const auto time = std::make_shared<std::optional<std::chrono::milliseconds>>();
    AddTimeOption(
        command, "--hold", [time](std::chrono::milliseconds written) { *time = written; },
        "How long: 30s, 2m [until Enter or Ctrl-C]");
    command.Note("The lock belongs to this process and ends with it.");
    command.Example("kestrel lock --hold 30s");
    command.OnUse([&chosen, time] {
        chosen = {"lock", [time](Context& context) { return HoldLock(context, *time); }};
    });
}

void AddUnlock(const tools::Command& app, Chosen& chosen) {
    const tools::Command command = app.AddSubcommand("unlock", "Give the printer back");
    command.Note("Asks once a second until the printer confirms it or the time is over.");
    command.Example("kestrel --timeout 10s unlock");
    command.OnUse([&chosen] { chosen = {"unlock", UnlockPrinter}; });
}

void AddCancel(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("cancel", "Cancel what the language monitor is doing for the printer");
    command.Note("Five seconds are allowed.");
    command.Example("kestrel cancel");
    command.OnUse([&chosen] { chosen = {"cancel", CancelWork, Reach::Several}; });
}

void AddCache(const tools::Command& app, Chosen& chosen) {
    const tools::Command command =
        app.AddSubcommand("cache", "Allow the language monitor to answer from what it knows, or not");
    const auto word = std::make_shared<std::string>();
    command.AddOption("STATE", *word, "on or off").Required().OneOf({"on", "off"});
    command.Note("Five seconds are allowed.");
    command.Example("kestrel cache off");
    command.OnUse([&chosen, word] {
        chosen = {"cache", [word](Context& context) { return SwitchCache(context, *word == "on"); },
                  Reach::Several};
    });
}

}  // namespace cli
