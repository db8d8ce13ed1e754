// A thread of its own draws the line, because the call that is waited for does not come back.
#include "kestrel/output/waiting.h"

#include <fmt/core.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>

#include "shared/process.h"

namespace cli {
namespace {

constexpr std::chrono::milliseconds kTick(250);
constexpr const char* kBackToLineStart = "\r\x1b[K";

}  // namespace

Waiting::Waiting(std::string what, bool wanted) : what_(std::move(what)) {
    if (wanted && tools::IsTerminal(stderr))
        thread_ = std::jthread([this](const std::stop_token& stop) { Show(stop); });
}

Waiting::~Waiting() = default;

void Waiting::Show(const std::stop_token& stop) const {
    const auto start = std::chrono::steady_clock::now();
    std::mutex mutex;
    std::condition_variable_any ended;
    std::unique_lock lock(mutex);
    while (!stop.stop_requested()) {
        const auto passed =
            std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start);
        fmt::print(stderr, "{}{} ... {} s", kBackToLineStart, what_, passed.count());
        std::fflush(stderr);
        ended.wait_for(lock, stop, kTick, [] { return false; });
    }
    fmt::print(stderr, "{}", kBackToLineStart);
}

}  // namespace cli
