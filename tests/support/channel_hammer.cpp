// Clients that use one channel as hard as they can: every request is a text of its own, and the reply must be
// that text. Says "ready" when its channels are open and begins at the first line of its input, so that many
// of them begin together. Prints, when the time is over: exchanges, failures by kind, wrong replies, the
// longest exchange in milliseconds, and the exchanges of the thread that had the fewest and of the one that
// had the most.
//
//   channel_hammer NAME THREADS MILLISECONDS TIMEOUT
#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "ipc/opl_channel.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Counts {
    std::atomic<uint64_t> good{0};
    std::atomic<uint64_t> abandoned{0};  // 735: the one before died in its exchange
    std::atomic<uint64_t> cancelled{0};  // 995: a dying client's cancel met this one
    std::atomic<uint64_t> timedOut{0};
    std::atomic<uint64_t> other{0};
    std::atomic<uint64_t> wrong{0};
    std::atomic<int64_t> longestMs{0};
};

void CountFailure(Counts& counts, DWORD error) {
    if (error == ERROR_ABANDONED_WAIT_0)
        ++counts.abandoned;
    else if (error == ERROR_OPERATION_ABORTED)
        ++counts.cancelled;
    else if (error == ERROR_TIMEOUT)
        ++counts.timedOut;
    else
        ++counts.other;
}

bool Exchange(OPLChannel& channel, const std::string& request, uint32_t timeoutMs, Counts& counts) {
    std::array<char, 256> reply;
    const auto length = static_cast<uint32_t>(request.size());
    if (channel.Send(request.data(), length, timeoutMs) != length) {
        CountFailure(counts, GetLastError());
        return false;
    }
    const uint32_t bytes = channel.Receive(reply.data(), reply.size(), timeoutMs);
    if (bytes == 0) {
        CountFailure(counts, GetLastError());
        return false;
    }
    const bool right = std::string_view(reply.data(), bytes) == request;
    ++(right ? counts.good : counts.wrong);
    return right;
}

// Returns how many exchanges were good.
uint64_t Hammer(OPLChannel& channel, size_t thread, Clock::time_point end, uint32_t timeoutMs,
                Counts& counts) {
    uint64_t good = 0;
    const std::string prefix = std::to_string(GetCurrentProcessId()) + '-' + std::to_string(thread) + '-';
    for (uint64_t i = 0; Clock::now() < end; ++i) {
        const Clock::time_point start = Clock::now();
        if (Exchange(channel, prefix + std::to_string(i), timeoutMs, counts)) ++good;
        const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
        int64_t longest = counts.longestMs;
        while (took > longest && !counts.longestMs.compare_exchange_weak(longest, took)) {
        }
    }
    return good;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const std::string name = argv[1];
    std::vector<std::unique_ptr<OPLChannel>> channels;
    for (int i = 0; i < std::atoi(argv[2]); ++i) {
        channels.push_back(std::make_unique<OPLChannel>());
        if (!channels.back()->Open(kwt::ChannelRole::Client, WideText(name.begin(), name.end()).c_str()))
            return 1;
    }
    std::cout << "ready" << std::endl;
    std::string go;
    std::getline(std::cin, go);
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(std::atoi(argv[3]));
    const auto timeoutMs = static_cast<uint32_t>(std::atoi(argv[4]));
    Counts counts;
    std::vector<uint64_t> served(channels.size());
    std::vector<std::thread> threads;
    for (size_t i = 0; i < channels.size(); ++i)
        threads.emplace_back([&, i] { served[i] = Hammer(*channels[i], i, end, timeoutMs, counts); });
    for (std::thread& thread : threads)
        thread.join();
    std::cout << counts.good << ' ' << counts.abandoned << ' ' << counts.cancelled << ' ' << counts.timedOut
              << ' ' << counts.other << ' ' << counts.wrong << ' ' << counts.longestMs << ' '
              << std::ranges::min(served) << ' ' << std::ranges::max(served) << std::endl;
    // Closing a client withdraws whatever request is unread, another's too: not before all have finished.
    std::getline(std::cin, go);
}
