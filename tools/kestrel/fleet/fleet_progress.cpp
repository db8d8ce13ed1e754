#include "kestrel/fleet/fleet_progress.h"

#include <fmt/core.h>

#include <cstdio>

#include "kestrel/output/progress.h"
#include "kestrel/text/text.h"
#include "shared/process.h"

namespace cli {
namespace {

constexpr std::chrono::seconds kBetweenLines(2);

}  // namespace

FleetProgress::FleetProgress(size_t printers, bool wanted)
    : printers_(printers), wanted_(wanted), onTerminal_(tools::IsTerminal(stderr)) {
    if (wanted_ && onTerminal_) DrawBar(0, printers_, "");
}

FleetProgress::~FleetProgress() {
    if (wanted_ && onTerminal_) EraseBar();
}

void FleetProgress::Show(size_t done, const std::string& printer) {
    if (!wanted_) return;
    if (onTerminal_) {
        DrawBar(done, printers_, ForTerminal(printer));
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (now - shown_ < kBetweenLines) return;
    shown_ = now;
    fmt::print(stderr, "{} of {} printers done ({} s)\n", done, printers_,
               std::chrono::duration_cast<std::chrono::seconds>(now - start_).count());
    std::fflush(stderr);
}

}  // namespace cli
