// Both are drawn over themselves and wiped away in the end.
#include "kestrel/output/progress.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdio>

#include "shared/process.h"

namespace cli {
namespace {

constexpr size_t kCells = 24;
constexpr std::string_view kEraseLine = "\r\x1b[K";

}  // namespace

void DrawBar(size_t done, size_t total, std::string_view what) {
    const size_t filled = kCells * done / total;
    fmt::print(stderr, "{}[{}{}] {}/{} {}", kEraseLine, std::string(filled, '#'),
               std::string(kCells - filled, '.'), done, total, what);
    std::fflush(stderr);
}

void EraseBar() {
    fmt::print(stderr, "{}", kEraseLine);
}

Progress::Progress(size_t total, bool wanted)
    : total_(std::max<size_t>(total, 1)), shown_(wanted && total > 1 && tools::IsTerminal(stderr)) {}

Progress::~Progress() {
    if (shown_) EraseBar();
}

void Progress::Step(std::string_view what) {
    if (shown_) DrawBar(++done_, total_, what);
}

WaitLine::WaitLine(std::string what, bool wanted)
    : what_(std::move(what)), shown_(wanted && tools::IsTerminal(stderr)) {}

WaitLine::~WaitLine() {
    if (shown_) fmt::print(stderr, "{}", kEraseLine);
}

void WaitLine::Show(std::string_view state) const {
    if (!shown_) return;
    const auto passed = std::chrono::steady_clock::now() - start_;
    fmt::print(stderr, "{}{}: {} ({} s)", kEraseLine, what_, state,
               std::chrono::duration_cast<std::chrono::seconds>(passed).count());
    std::fflush(stderr);
}

}  // namespace cli
