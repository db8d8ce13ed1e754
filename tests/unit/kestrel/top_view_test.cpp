// The lines of `kestrel top`, for terminals of any size.
#include <fmt/core.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "kestrel/top/view.h"

namespace {

cli::TopPrinter Printer(const std::string& name, uint32_t ink, double rate, bool answers = true) {
    cli::TopPrinter printer;
    printer.seen.printer = {name, "USB001", "ZRIJ9900 Series", true};
    printer.rate = rate;
    if (!answers) return printer;
    printer.seen.reading.emplace().status = {
        0,
        "ready",
        {},
        true,
        cli::StatusDetails{{}, {{"black", ink, ink < 10 ? "low" : "enough"}}, 80, 100, false, true}};
    return printer;
}

std::string Text(const top::Line& line) {
    std::string text;
    for (const top::Span& span : line)
        text += span.text;
    return text;
}

// The first words of the lines between heading and keys.
std::string Names(cli::TopView& view, top::Size size) {
    std::string names;
    const std::vector<top::Line> lines = view.Draw(size, "12:00:00");
    for (size_t i = 2; i + 1 < lines.size(); ++i)
        if (const std::string text = Text(lines[i]); !text.empty())
            names += text.substr(0, text.find(' ')) + " ";
    return names;
}

TEST(TopView, Sorts_and_filters) {
    constexpr top::Size kSize{80, 24};
    cli::TopView view;
    view.Take({Printer("C", 5, 1), Printer("A", 50, 9), Printer("D", 80, 0, false), Printer("B", 40, 5)});
    EXPECT_EQ("A B C D ", Names(view, kSize));
    for (const char* const expected : {"C D A B ", "C B A D ", "A B C D "}) {  // trouble, ink, rate
        view.Press(top::Key::Sort);
        EXPECT_EQ(expected, Names(view, kSize));
    }
    view.Press(top::Key::Filter);
    EXPECT_EQ("C D ", Names(view, kSize));
}

TEST(TopView, Stays_within_the_terminal_and_scrolls_to_what_is_chosen) {
    cli::TopView view;
    std::vector<cli::TopPrinter> printers;
    for (int i = 10; i < 60; ++i)
        printers.push_back(Printer(fmt::format("P{}\xC3\xBC-and-a-long-name", i), 50, 1));
    view.Take(printers);
    for (const top::Size size : {top::Size{200, 60}, {80, 24}, {20, 5}, {7, 3}, {3, 2}, {1, 1}, {0, 0}}) {
        const std::vector<top::Line> lines = view.Draw(size, "12:00:00");
        EXPECT_EQ(static_cast<size_t>(size.height), lines.size());
        for (const top::Line& line : lines) {
            const std::string text = Text(line);
            const auto characters = std::ranges::count_if(
                text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
            EXPECT_GE(size.width, characters);
        }
    }
    for (int i = 0; i < 30; ++i)
        view.Press(top::Key::Down);
    const std::string names = Names(view, {80, 10});
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "P39", names);
    EXPECT_PRED_FORMAT2(testing::IsNotSubstring, "P10", names);
    view.Press(top::Key::Details);
    EXPECT_EQ(8u, view.Draw({80, 8}, "").size());
}

}  // namespace
