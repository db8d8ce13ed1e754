// Clients that use one channel as hard as they can: every request is a text of its own, and the reply must be
// that text. Says "ready" when its channels are open, else "error" and the last-error value. Its input says
// the rest, a line each, so that many of them do it together: begin, or end at once ("close"); print what was
// counted (exchange_counts.h), at least one good exchange or five seconds later; close.
//
//   channel_client NAME THREADS TIMEOUT PAUSE     milliseconds: of an exchange; after one that failed
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

#include "exchange_counts.h"
#include "ipc/opl_channel.h"
#include "widened.h"

namespace {

using Clock = std::chrono::steady_clock;

// Of one that failed.
long& CountOf(ExchangeCounts& counts, DWORD error) {
    switch (error) {
        case ERROR_ABANDONED_WAIT_0:   // the one before died in its exchange
        case ERROR_OPERATION_ABORTED:  // a dying client's cancel met this one
        case ERROR_TIMEOUT:
        case ERROR_SHARING_VIOLATION:  // an unread message of a process that has died and still counts as
                                       // running
            return counts.failed;
        default:
            return counts.other;
    }
}

// Which of the counts one exchange adds to.
long& Exchange(ipc::OPLChannel& channel, const std::string& process, const std::string& request,
               uint32_t timeoutMs, ExchangeCounts& counts) {
    std::array<char, 256> reply;
    const auto length = static_cast<uint32_t>(request.size());
    if (channel.Send(request.data(), length, timeoutMs) != length) return CountOf(counts, GetLastError());
    const uint32_t bytes = channel.Receive(reply.data(), reply.size(), timeoutMs);
    if (bytes == 0) return CountOf(counts, GetLastError());
    const std::string_view text(reply.data(), bytes);
    return text == request ? counts.good : text.starts_with(process) ? counts.late : counts.wrong;
}

void Work(ipc::OPLChannel& channel, size_t thread, const std::atomic<bool>& ended, uint32_t timeoutMs,
          DWORD pauseMs, ExchangeCounts& counts) {
    const std::string process = std::to_string(GetCurrentProcessId()) + '-';
    const std::string prefix = process + std::to_string(thread) + '-';
    const Clock::time_point patience = Clock::now() + std::chrono::seconds(5);
    for (uint64_t i = 0; !ended || (counts.good == 0 && Clock::now() < patience); ++i) {
        const Clock::time_point start = Clock::now();
        const long good = counts.good;
        ++Exchange(channel, process, prefix + std::to_string(i), timeoutMs, counts);
        const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
        counts.longestMs = std::max(counts.longestMs, static_cast<long>(took));
        if (counts.good == good && pauseMs != 0) Sleep(pauseMs);
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
        if (channels.back()->Open(ipc::ChannelRole::Client, Widened(name).c_str())) continue;
        std::cout << "error " << GetLastError() << std::endl;
        return 0;
    }
    std::cout << "ready" << std::endl;
    std::string line;
    if (!std::getline(std::cin, line) || line == "close") return 0;
    const auto timeoutMs = static_cast<uint32_t>(std::atoi(argv[3]));
    const auto pauseMs = static_cast<DWORD>(std::atoi(argv[4]));
    std::atomic<bool> ended{false};
    std::vector<ExchangeCounts> counts(channels.size());
    std::vector<std::thread> threads;
    for (size_t i = 0; i < channels.size(); ++i)
        threads.emplace_back([&, i] { Work(*channels[i], i, ended, timeoutMs, pauseMs, counts[i]); });
    std::getline(std::cin, line);
    ended = true;
    for (std::thread& thread : threads)
        thread.join();
    ExchangeCounts all;
    for (const ExchangeCounts& one : counts)
        all.Add(one);
    std::cout << all << std::endl;
    // Closing a client withdraws whatever request is unread, another's too: not before all have finished.
    std::getline(std::cin, line);
}
