// Clients that use one channel as hard as they can: every request is a text of its own, and the reply must be
// that text. Says "ready" when its channels are open and begins at the first line of its input, so that many
// of them begin together. Prints what it counted (hammer_counts.h) when the time is over.
//
//   channel_hammer NAME THREADS MILLISECONDS TIMEOUT
#include <windows.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "hammer_counts.h"
#include "ipc/opl_channel.h"
#include "widened.h"

namespace {

using Clock = std::chrono::steady_clock;

long& CountOf(HammerCounts& counts, DWORD error) {
    constexpr std::pair<DWORD, long HammerCounts::*> kKnown[] = {
        {ERROR_ABANDONED_WAIT_0, &HammerCounts::abandoned},
        {ERROR_OPERATION_ABORTED, &HammerCounts::cancelled},
        {ERROR_TIMEOUT, &HammerCounts::timedOut},
        {ERROR_SHARING_VIOLATION, &HammerCounts::occupied}};
    for (const auto& [code, count] : kKnown)
        if (code == error) return counts.*count;
    return counts.other;
}

// Which of the counts one exchange adds to.
long& Exchange(ipc::OPLChannel& channel, const std::string& process, const std::string& request,
               uint32_t timeoutMs, HammerCounts& counts) {
    std::array<char, 256> reply;
    const auto length = static_cast<uint32_t>(request.size());
    if (channel.Send(request.data(), length, timeoutMs) != length) return CountOf(counts, GetLastError());
    const uint32_t bytes = channel.Receive(reply.data(), reply.size(), timeoutMs);
    if (bytes == 0) return CountOf(counts, GetLastError());
    const std::string_view text(reply.data(), bytes);
    return text == request ? counts.good : text.starts_with(process) ? counts.late : counts.wrong;
}

void Hammer(ipc::OPLChannel& channel, size_t thread, Clock::time_point end, uint32_t timeoutMs,
            HammerCounts& counts) {
    const std::string process = std::to_string(GetCurrentProcessId()) + '-';
    const std::string prefix = process + std::to_string(thread) + '-';
    for (uint64_t i = 0; Clock::now() < end; ++i) {
        const Clock::time_point start = Clock::now();
        ++Exchange(channel, process, prefix + std::to_string(i), timeoutMs, counts);
        const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
        counts.longestMs = std::max(counts.longestMs, static_cast<long>(took));
    }
    counts.least = counts.most = counts.good;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const std::string name = argv[1];
    std::vector<std::unique_ptr<ipc::OPLChannel>> channels;
    for (int i = 0; i < std::atoi(argv[2]); ++i) {
        channels.push_back(std::make_unique<ipc::OPLChannel>());
        if (!channels.back()->Open(ipc::ChannelRole::Client, Widened(name).c_str())) return 1;
    }
    std::cout << "ready" << std::endl;
    std::string go;
    std::getline(std::cin, go);
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(std::atoi(argv[3]));
    const auto timeoutMs = static_cast<uint32_t>(std::atoi(argv[4]));
    std::vector<HammerCounts> counts(channels.size());
    std::vector<std::thread> threads;
    for (size_t i = 0; i < channels.size(); ++i)
        threads.emplace_back([&, i] { Hammer(*channels[i], i, end, timeoutMs, counts[i]); });
    for (std::thread& thread : threads)
        thread.join();
    HammerCounts all;
    for (const HammerCounts& one : counts)
        all.Add(one);
    std::cout << all << std::endl;
    // Closing a client withdraws whatever request is unread, another's too: not before all have finished.
    std::getline(std::cin, go);
}
