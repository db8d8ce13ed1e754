#include "kestrel/output/progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

#include "kestrel/platform.h"

namespace cli {
namespace {

constexpr std::size_t kCells = 24;
constexpr std::string_view kEraseLine = "\r\x1b[K";

}  // namespace

Progress::Progress(std::size_t total, bool wanted)
    : total_(std::max<std::size_t>(total, 1)),
      shown_(wanted && total > 1 && platform::IsTerminal(platform::Stream::kError)) {}

Progress::~Progress() {
    if (shown_) fmt::print(stderr, "{}", kEraseLine);
}

void Progress::Step(std::string_view what) {
    if (!shown_) return;
    const std::size_t filled = kCells * done_ / total_;
    ++done_;
    fmt::print(stderr, "{}[{}{}] {}/{} {}", kEraseLine, std::string(filled, '#'),
               std::string(kCells - filled, '.'), done_, total_, what);
    std::fflush(stderr);
}

WaitLine::WaitLine(std::string what, bool wanted)
    : what_(std::move(what)), shown_(wanted && platform::IsTerminal(platform::Stream::kError)) {}

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
