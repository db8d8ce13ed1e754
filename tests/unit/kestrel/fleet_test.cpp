// Which printers are meant, and what a file wants of them.
#include <fmt/format.h>

#include <algorithm>
#include <condition_variable>
#include <iterator>
#include <mutex>
#include <sstream>

#include "kestrel/fleet/choice.h"
#include "kestrel/fleet/differences.h"
#include "kestrel/fleet/each_printer.h"
#include "kestrel/fleet/sight.h"
#include "kestrel/fleet/wanted_state.h"
#include "kestrel/settings/settings.h"
#include "refusal.h"
#include "sections.h"

namespace {

constexpr const char* kFleet = UNIT_TESTS "/kestrel/fleet.txt";

TEST(FleetChoice, Names_each_printer_once_in_the_order_of_the_line) {
    const cli::Installed installed = {{{"Lab", "USB004", "Other", true},
                                       {"Office1", "USB001", "ZRIJ9900 Series", true},
                                       {"Office2", "USB002", "ZRIJ9900 Series", true}},
                                      {"ZRIJ9900 Series"}};
    ForEachCase(kFleet, "Choice", [&](const std::string& written, const std::string& expected) {
        std::istringstream words(written);
        cli::PrinterChoice choice{{std::istream_iterator<std::string>(words), {}}, false};
        choice.all = std::erase(choice.written, "--all") != 0;
        std::vector<std::string> names;
        if (const auto failure = FailureOf([&] { names = ChosenPrinters(choice, installed); })) {
            EXPECT_EQ(cli::ExitCode::NoPrinter, failure->exit);
            EXPECT_EQ("installed are: Lab, Office1, Office2", failure->advice);
            names = {"none"};
        }
        EXPECT_EQ(expected, fmt::format("{}", fmt::join(names, ",")));
    });
}

// "fax.redials=5 ..." of one printer, or what is wrong with the file.
std::string WantedOf(const std::string& file, const std::string& printer) {
    std::vector<std::string> told;
    const auto failure = FailureOf([&] {
        for (const cli::WantedSetting& setting : cli::ParseWantedState(file, "f").For(printer))
            told.push_back(fmt::format("{}={}", setting.row->name, FormatValue(*setting.row, setting.value)));
    });
    return failure ? fmt::format("{} {}", static_cast<int>(failure->exit), failure->text)
                   : fmt::format("{}", fmt::join(told, " "));
}

TEST(FleetWanted, Is_read_in_each_form_for_each_printer_or_refused_with_its_place) {
    ForEachCase(kFleet, "Wanted", [](const std::string& given, const std::string& expected) {
        const size_t blank = given.find(' ');
        std::string file = given.substr(blank + 1);
        std::ranges::replace(file, '|', '\n');
        const std::string seen = WantedOf(file, given.substr(0, blank));
        EXPECT_TRUE(seen.starts_with(expected)) << seen;
    });
    EXPECT_EQ("fax.redials=5", WantedOf("\xEF\xBB\xBF fax.redials = 5\r\n", "P"));
}

TEST(FleetWanted, Takes_of_a_dump_what_can_be_set_again) {
    const cli::WantedState state = cli::ParseWantedState(
        R"({"format":"kestrel-dump","version":1,"secrets":"left out","settings":{
            "fax.redials":3,"fax.rings":{"error":{}},"wireless.state":"Connected","wireless.pass-phrase":"********"}})",
        "f");
    EXPECT_EQ(1u, state.For("P").size());
    EXPECT_EQ(3u, state.leftOut);
}

TEST(FleetDifferences, Count_what_both_have_and_between_printers_also_what_one_does_not_tell) {
    const catalogue::Row* const redials = &cli::FindSetting("fax.redials");
    const catalogue::Row* const rings = &cli::FindSetting("fax.rings");
    const cli::SettingSide told{{{redials, cli::Value{3, {}}}, {rings, cli::Value{4, {}}}}, true, {}};
    const cli::SettingSide silent{{{redials, cli::Value{3, {}}}, {rings, std::nullopt}}, true, {}};
    const cli::SettingSide wanted{{{redials, cli::Value{5, {}}}}, false, {}};
    const auto text = [](const cli::Comparison& comparison) {
        std::string names;
        for (const cli::Difference& difference : comparison.differences)
            names += std::string(difference.row->name) + ' ';
        return names + std::to_string(comparison.compared);
    };
    EXPECT_EQ("2", text(Compare(told, told)));
    EXPECT_EQ("fax.rings 2", text(Compare(told, silent)));
    EXPECT_EQ("fax.redials 1", text(Compare(wanted, told)));
}

TEST(FleetThreads, Work_for_so_many_printers_at_a_time_and_report_in_their_order) {
    std::vector<std::string> printers;
    for (int i = 0; i < 40; ++i)
        printers.push_back(std::to_string(i));
    constexpr int atATime = 4;
    std::mutex lock;
    std::condition_variable changed;
    int working = 0;
    int most = 0;
    int done = 0;
    size_t steps = 0;
    cli::EachPrinter each;
    const auto reports = each.Do(
        printers, atATime,
        [&](const std::string& printer) {
            std::unique_lock guard(lock);
            most = std::max(most, ++working);
            changed.notify_all();
            // The first ones wait for each other, and the very first one for most of the others.
            changed.wait_for(guard, std::chrono::seconds(20),
                             [&] { return most >= atATime && (printer != "0" || done > 30); });
            --working;
            ++done;
            changed.notify_all();
            return cli::Report{printer, {}, {}};
        },
        [&steps](size_t number, const std::string&) { EXPECT_EQ(++steps, number); });
    ASSERT_EQ(printers.size(), reports.size());
    for (size_t i = 0; i < printers.size(); ++i)
        EXPECT_EQ(printers[i], reports[i].report.text);
    EXPECT_EQ(atATime, most);
    EXPECT_EQ(printers.size(), steps);
}

TEST(FleetSight, Tells_changes_and_once_that_a_printer_is_gone_or_back) {
    const cli::Sight gone{false, "no answer", {}};
    const auto told = [](int redials) {
        return cli::Sight{true, {}, {{"fax.redials", std::to_string(redials)}, {"fax.rings", "4"}}};
    };
    cli::KnownPrinter known;
    const auto learn = [&known](const cli::Sight& sight) {
        std::string text;
        for (const cli::SightEvent& event : known.Learn(sight))
            text += event.key.empty() ? (event.answers ? "back;" : "gone: " + event.now + ";")
                                      : event.key + " " + event.old + ">" + event.now + ";";
        return text;
    };
    EXPECT_EQ("gone: no answer;", learn(gone));
    EXPECT_EQ("", learn(gone));
    EXPECT_EQ("back;", learn(told(3)));
    EXPECT_EQ("", learn(told(3)));
    EXPECT_EQ("fax.redials 3>5;", learn(told(5)));
    EXPECT_EQ("gone: no answer;", learn(gone));
    EXPECT_EQ("back;fax.redials 5>6;", learn(told(6)));
    cli::KnownPrinter other;
    EXPECT_TRUE(other.Learn(told(3)).empty()) << "nothing is told of what is found at first";
}

}  // namespace
