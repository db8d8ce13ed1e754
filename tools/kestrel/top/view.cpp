// Columns of fixed width; the last one takes what is left.
#include "kestrel/top/view.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>

#include "kestrel/text/text.h"

namespace cli {
namespace {

using top::Line;
using top::Size;
using top::Span;
using top::Style;

constexpr size_t kNameWidth = 14;
constexpr size_t kStateWidth = 12;
constexpr uint32_t kBarCells = 5;
constexpr int kFrame = 3;  // title, heading and keys
constexpr const char* kKeys = "q quit  s sort  f filter  d details  up, down";

constexpr std::array<const char*, 4> kOrderNames = {"name", "trouble", "ink", "rate"};
constexpr std::array<const char*, 2> kFilterNames = {"all", "trouble"};

// How many have a bar; details tell all.
size_t InksIn(Size size) {
    return size.width >= 100 ? 6 : 4;
}

// As wide as said, cut or filled; characters of several bytes stay whole.
std::string Column(std::string_view text, size_t width) {
    std::string column;
    size_t taken = 0;
    for (size_t at = 0; at < text.size() && taken < width;) {
        size_t next = at + 1;
        while (next < text.size() && (static_cast<unsigned char>(text[next]) & 0xC0) == 0x80)
            ++next;
        column += text.substr(at, next - at);
        at = next;
        ++taken;
    }
    return column + std::string(width - taken, ' ');
}

// The line, no wider than the terminal.
Line Cut(const Line& line, int width) {
    Line cut;
    auto room = static_cast<size_t>(std::max(width, 0));
    for (const Span& span : line) {
        const size_t wide = static_cast<size_t>(std::ranges::count_if(
            span.text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
        const size_t taken = std::min(wide, room);
        if (taken != 0) cut.push_back({Column(span.text, taken), span.style});
        room -= taken;
    }
    return cut;
}

const StatusDetails* DetailsOf(const TopPrinter& printer) {
    const auto& reading = printer.seen.reading;
    return reading && reading->status.details ? &*reading->status.details : nullptr;
}

uint32_t LowestInk(const TopPrinter& printer) {
    const StatusDetails* const details = DetailsOf(printer);
    uint32_t lowest = 100;
    if (details != nullptr)
        for (const InkLevel& ink : details->inks)
            lowest = std::min(lowest, ink.percent);
    return lowest;
}

Style InkStyle(const InkLevel& ink) {
    if (ink.state == "empty") return Style::Alarm;
    return ink.state == "low" ? Style::Warning : Style::Plain;
}

std::string Bar(uint32_t percent) {
    const uint32_t cells = std::min(kBarCells, (percent * kBarCells + 99) / 100);
    return std::string(cells, '#') + std::string(kBarCells - cells, '.') + ' ';
}

std::string_view StateOf(const TopPrinter& printer) {
    return printer.seen.reading ? printer.seen.reading->status.word : std::string_view("no answer");
}

Line Row(const TopPrinter& printer, size_t inks) {
    const bool isSilent = !printer.seen.reading;
    Line line = {{Column(ForTerminal(printer.seen.printer.name), kNameWidth) + ' ', Style::Plain},
                 {Column(StateOf(printer), kStateWidth) + ' ', isSilent               ? Style::Alarm
                                                               : IsInTrouble(printer) ? Style::Warning
                                                                                      : Style::Plain}};
    const StatusDetails* const details = DetailsOf(printer);
    for (size_t i = 0; i < inks; ++i) {
        const bool has = details != nullptr && i < details->inks.size();
        line.push_back(has ? Span{Bar(details->inks[i].percent), InkStyle(details->inks[i])}
                           : Span{Column("", kBarCells + 1), Style::Plain});
    }
    line.push_back({details == nullptr
                        ? Column("", 12)
                        : fmt::format("{:>4}% {:>4}% ", details->upperTray, details->lowerTray),
                    Style::Plain});
    line.push_back({fmt::format("{:>5.1f} ", printer.rate), Style::Plain});
    line.push_back({ForTerminal(printer.lastError), isSilent ? Style::Alarm : Style::Plain});
    return line;
}

// The inks are named by the first printer that tells them.
Line Heading(const std::vector<const TopPrinter*>& shown, size_t inks) {
    std::string text = Column("PRINTER", kNameWidth) + ' ' + Column("STATE", kStateWidth) + ' ';
    const auto telling =
        std::ranges::find_if(shown, [](const TopPrinter* printer) { return DetailsOf(*printer) != nullptr; });
    for (size_t i = 0; i < inks; ++i) {
        const bool has = telling != shown.end() && i < DetailsOf(**telling)->inks.size();
        text += Column(has ? DetailsOf(**telling)->inks[i].name : "", kBarCells) + ' ';
    }
    return {{text + "UPPER LOWER  EX/S ERROR", Style::Heading}};
}

bool ComesBefore(const TopPrinter& left, const TopPrinter& right, TopOrder order) {
    switch (order) {
        case TopOrder::Trouble:
            if (IsInTrouble(left) != IsInTrouble(right)) return IsInTrouble(left);
            break;
        case TopOrder::Ink:
            if (LowestInk(left) != LowestInk(right)) return LowestInk(left) < LowestInk(right);
            break;
        case TopOrder::Rate:
            if (left.rate != right.rate) return left.rate > right.rate;
            break;
        case TopOrder::Name:
            break;
    }
    return left.seen.printer.name < right.seen.printer.name;
}

template <typename Choice>
Choice Next(Choice choice, size_t count) {
    return static_cast<Choice>((static_cast<size_t>(choice) + 1) % count);
}

}  // namespace

bool IsInTrouble(const TopPrinter& printer) {
    if (!printer.seen.reading) return true;
    const DeviceStatus& status = printer.seen.reading->status;
    const bool isFine = status.word == "ready";
    const StatusDetails* const details = DetailsOf(printer);
    return !isFine || (details != nullptr && std::ranges::any_of(details->inks, [](const InkLevel& ink) {
                           return ink.state != "enough";
                       }));
}

void TopView::Take(std::vector<TopPrinter> printers) {
    printers_ = std::move(printers);
}

std::vector<const TopPrinter*> TopView::Shown() const {
    std::vector<const TopPrinter*> shown;
    for (const TopPrinter& printer : printers_)
        if (filter_ == TopFilter::All || IsInTrouble(printer)) shown.push_back(&printer);
    std::ranges::sort(shown, [this](const TopPrinter* left, const TopPrinter* right) {
        return ComesBefore(*left, *right, order_);
    });
    return shown;
}

void TopView::Press(top::Key key) {
    const std::vector<const TopPrinter*> shown = Shown();
    const auto chosen = std::ranges::find_if(
        shown, [this](const TopPrinter* printer) { return printer->seen.printer.name == chosen_; });
    const auto place = chosen == shown.end() ? 0 : static_cast<size_t>(chosen - shown.begin());
    const auto choose = [&](size_t index) {
        if (!shown.empty()) chosen_ = shown[std::min(index, shown.size() - 1)]->seen.printer.name;
    };
    if (key == top::Key::Sort) order_ = Next(order_, kOrderNames.size());
    if (key == top::Key::Filter) filter_ = Next(filter_, kFilterNames.size());
    if (key == top::Key::Details) {
        choose(place);
        showsDetails_ = !showsDetails_;
    }
    if (key == top::Key::Up) choose(place == 0 ? 0 : place - 1);
    if (key == top::Key::Down) choose(chosen_.empty() ? 0 : place + 1);
}

std::vector<Line> TopView::DrawList(const std::vector<const TopPrinter*>& shown, Size size) {
    const auto room = static_cast<size_t>(std::max(size.height - kFrame, 0));
    const auto chosen = std::ranges::find_if(
        shown, [this](const TopPrinter* printer) { return printer->seen.printer.name == chosen_; });
    const auto place = chosen == shown.end() ? first_ : static_cast<size_t>(chosen - shown.begin());
    if (place < first_) first_ = place;
    if (room != 0 && place >= first_ + room) first_ = place - room + 1;
    first_ = std::min(first_, shown.size() > room ? shown.size() - room : 0);

    std::vector<Line> lines = {Heading(shown, InksIn(size))};
    for (size_t i = first_; i < shown.size() && i < first_ + room; ++i) {
        Line line = Row(*shown[i], InksIn(size));
        if (shown[i]->seen.printer.name == chosen_) line.front().style = Style::Chosen;
        lines.push_back(std::move(line));
    }
    return lines;
}

std::vector<Line> TopView::DrawDetails(const TopPrinter& printer, Size size) {
    const InstalledPrinter& installed = printer.seen.printer;
    std::vector<Line> lines = {{{ForTerminal(installed.name), Style::Heading}},
                               {{"port    " + ForTerminal(installed.port)}},
                               {{"driver  " + ForTerminal(installed.driver)}}};
    if (printer.seen.reading) {
        std::string status = StatusText(printer.seen.reading->status);
        for (size_t at = 0; at < status.size();) {
            const size_t end = std::min(status.find('\n', at), status.size());
            lines.push_back({{status.substr(at, end - at)}});
            at = end + 1;
        }
        if (printer.seen.reading->firmware)
            lines.push_back({{"firmware  " + ForTerminal(printer.seen.reading->firmware->printer)}});
    } else {
        lines.push_back({{"does not answer", Style::Alarm}});
    }
    for (const auto& [reason, count] : printer.seen.errors)
        lines.push_back({{fmt::format("{} x {} {}", count, reason.code, reason.word), Style::Warning}});
    lines.resize(std::min(lines.size(), static_cast<size_t>(std::max(size.height - kFrame + 1, 0))));
    return lines;
}

std::vector<Line> TopView::Draw(Size size, const std::string& time) {
    const std::vector<const TopPrinter*> shown = Shown();
    const auto silent =
        std::ranges::count_if(printers_, [](const TopPrinter& printer) { return !printer.seen.reading; });
    std::vector<Line> lines = {
        {{fmt::format("{} printers, {} without an answer  sort: {}  filter: {}  {}", printers_.size(), silent,
                      kOrderNames.at(static_cast<size_t>(order_)),
                      kFilterNames.at(static_cast<size_t>(filter_)), time),
          Style::Bold}}};
    const auto chosen = std::ranges::find_if(
        shown, [this](const TopPrinter* printer) { return printer->seen.printer.name == chosen_; });
    const std::vector<Line> body =
        showsDetails_ && chosen != shown.end() ? DrawDetails(**chosen, size) : DrawList(shown, size);
    lines.insert(lines.end(), body.begin(), body.end());
    lines.resize(static_cast<size_t>(std::max(size.height - 1, 0)));
    if (size.height > 0) lines.push_back({{kKeys, Style::Bold}});
    for (Line& line : lines)
        line = Cut(line, size.width);
    return lines;
}

}  // namespace cli
