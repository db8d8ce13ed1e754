// Clients that use one channel as hard as they can: every request is a text of its own, and the reply must be
// that text. Says "ready" when its channels are open and begins at the first line of its input, so that many
// of them begin together. Prints, when the time is over: exchanges, failures by kind, and wrong replies.
//
//   channel_hammer NAME THREADS MILLISECONDS
#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "ipc/opl_channel.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr uint32_t kTimeoutMs = 2000;

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

void Exchange(OPLChannel& channel, const std::string& request, Counts& counts) {
    std::array<char, 256> reply;
    const auto length = static_cast<uint32_t>(request.size());
    if (channel.Send(request.data(), length, kTimeoutMs) != length) {
        CountFailure(counts, GetLastError());
        return;
    }
    const uint32_t bytes = channel.Receive(reply.data(), reply.size(), kTimeoutMs);
    if (bytes == 0)
        CountFailure(counts, GetLastError());
    else if (std::string(reply.data(), bytes) == request)
        ++counts.good;
    else
        ++counts.wrong;
}

void Hammer(OPLChannel& channel, int thread, Clock::time_point end, Counts& counts) {
    const std::string prefix = std::to_string(GetCurrentProcessId()) + '-' + std::to_string(thread) + '-';
    for (uint64_t i = 0; Clock::now() < end; ++i) {
        const Clock::time_point start = Clock::now();
        Exchange(channel, prefix + std::to_string(i), counts);
        const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
        int64_t longest = counts.longestMs;
        while (took > longest && !counts.longestMs.compare_exchange_weak(longest, took)) {
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
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
    Counts counts;
    std::vector<std::thread> threads;
    for (size_t i = 0; i < channels.size(); ++i)
        threads.emplace_back([&, i] { Hammer(*channels[i], static_cast<int>(i), end, counts); });
    for (std::thread& thread : threads)
        thread.join();
    std::cout << counts.good << ' ' << counts.abandoned << ' ' << counts.cancelled << ' ' << counts.timedOut
              << ' ' << counts.other << ' ' << counts.wrong << ' ' << counts.longestMs << std::endl;
    // Closing a client withdraws whatever request is unread, another's too: not before all have finished.
    std::getline(std::cin, go);
}
