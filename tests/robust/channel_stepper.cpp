// A client or a server that ends, as by SIGKILL, at a named place of the channel's code; and the clients that
// work meanwhile. A client's work is one sequence: open, three exchanges, one that is cancelled, close. A
// server's: open, serve twenty requests, cancel, serve twenty more, close.
//
//   channel_stepper client|server NAME               prints "<hits> <place>" for each place on its way
//   channel_stepper client|server NAME HIT PLACE     ends at the hit of the place
//   channel_stepper open NAME                        prints "<opened> <last error>"
//   channel_stepper once NAME                        until it is served: "<served> <attempts> <milliseconds>"
//   channel_stepper work NAME                        until its input ends: "<good> <failed> <wrong> <longest
//                                                    ms> <late>"
//   channel_stepper hurry NAME                       the same, with short time-outs and without pauses
#include <poll.h>
#include <signal.h>
#include <unistd.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "ipc/late_reply.h"
#include "ipc/opl_channel.h"
#include "kwt/step.h"

namespace {

constexpr uint32_t kTimeoutMs = 250;
constexpr uint32_t kShortTimeoutMs = 10;
constexpr uint32_t kPauseAfterFailureMs = 50;

std::mutex hitsLock;
std::map<std::string, int> hits;
std::string doomedPlace;
std::atomic<int> doomedHit{0};
constexpr int kNever = -1;  // a server of this hit serves until it is killed

class Echo final : public ipc::OPLChannel {
  public:
    void OnMessage(const void* data, size_t length) override {
        const auto bytes = static_cast<uint32_t>(length);
        const uint64_t start = GetTickCount64();
        // A reply has no number: one that comes late is taken for that to the next request.
        const auto send = [&] {
            return GetTickCount64() - start < kTimeoutMs / 2 && Send(data, bytes, kTimeoutMs) != 0;
        };
        static_cast<void>(ipc::SendPastLateReply(*this, send, Sleep));
        ++served;
    }
    std::atomic<int> served{0};
};

bool Open(ipc::OPLChannel& channel, ipc::ChannelRole role, const std::string& name) {
    return channel.Open(role, WideText(name.begin(), name.end()).c_str());
}

// Late: the reply to an earlier request of this process, which it had given up; replies know no more than
// that.
enum class Outcome { Good, Failed, Wrong, Late };

Outcome Exchange(ipc::OPLChannel& channel, uint64_t nonce, uint32_t timeoutMs) {
    const std::string process = std::to_string(GetCurrentProcessId()) + '-';
    const std::string request = process + std::to_string(nonce);
    std::array<char, 64> reply;
    const auto length = static_cast<uint32_t>(request.size());
    if (channel.Send(request.data(), length, timeoutMs) != length) return Outcome::Failed;
    const uint32_t bytes = channel.Receive(reply.data(), reply.size(), timeoutMs);
    if (bytes == 0) return Outcome::Failed;
    const std::string_view text(reply.data(), bytes);
    if (text == request) return Outcome::Good;
    return text.starts_with(process) ? Outcome::Late : Outcome::Wrong;
}

int RunClient(const std::string& name) {
    ipc::OPLChannel channel;
    if (!Open(channel, ipc::ChannelRole::Client, name)) return 1;
    for (uint64_t i = 0; i < 3; ++i)
        Exchange(channel, i, kTimeoutMs);
    channel.Send("x", 1, kTimeoutMs);
    channel.Cancel();
    channel.Close();
    return 0;
}

int RunServer(const std::string& name) {
    Echo channel;
    if (!Open(channel, ipc::ChannelRole::Server, name)) return 1;
    channel.StartServerThread();
    std::cout << "ready" << std::endl;
    const bool isToStay = doomedHit == kNever;
    const auto serve = [&](int count) {
        for (int i = 0; (i < 1000 || isToStay) && (channel.served < count || isToStay); ++i)
            Sleep(2);
    };
    serve(20);
    channel.Cancel();
    serve(40);
    channel.Close();
    return 0;
}

int RunOpen(const std::string& name) {
    ipc::OPLChannel channel;
    const bool opened = Open(channel, ipc::ChannelRole::Client, name);
    std::cout << opened << ' ' << GetLastError() << std::endl;
    return 0;
}

int RunOnce(const std::string& name) {
    ipc::OPLChannel channel;
    const uint64_t start = GetTickCount64();
    if (!Open(channel, ipc::ChannelRole::Client, name)) return 1;
    // What the dead left is told to somebody, once: that costs an attempt.
    int attempts = 0;
    Outcome outcome = Outcome::Failed;
    while (outcome == Outcome::Failed && GetTickCount64() - start < 5000) {
        if (++attempts > 1) Sleep(kPauseAfterFailureMs);
        outcome = Exchange(channel, static_cast<uint64_t>(attempts), 1000);
    }
    std::cout << (outcome == Outcome::Good) << ' ' << attempts << ' ' << GetTickCount64() - start
              << std::endl;
    return 0;
}

bool InputEnded() {
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) > 0;
}

int RunWorker(const std::string& name, uint32_t timeoutMs, uint32_t pauseMs) {
    ipc::OPLChannel channel;
    if (!Open(channel, ipc::ChannelRole::Client, name)) return 1;
    std::cout << "ready" << std::endl;
    std::array<uint64_t, 4> counts{};
    uint64_t longest = 0;
    for (uint64_t nonce = 0; !InputEnded(); ++nonce) {
        const uint64_t start = GetTickCount64();
        const Outcome outcome = Exchange(channel, nonce, timeoutMs);
        ++counts[static_cast<size_t>(outcome)];
        longest = std::max<uint64_t>(longest, GetTickCount64() - start);
        if (outcome == Outcome::Failed && pauseMs != 0) Sleep(pauseMs);
    }
    std::cout << counts[0] << ' ' << counts[1] << ' ' << counts[2] << ' ' << longest << ' ' << counts[3]
              << std::endl;
    return 0;
}

}  // namespace

void kwt::Step(const char* place) {
    if (place == doomedPlace && --doomedHit == 0) kill(getpid(), SIGKILL);
    if (!doomedPlace.empty()) return;
    const std::lock_guard guard(hitsLock);
    ++hits[place];
}

int main(int argc, char** argv) {
    if (argc != 3 && argc != 5) return 2;
    const std::string role = argv[1];
    const std::string name = argv[2];
    if (role == "open") return RunOpen(name);
    if (role == "once") return RunOnce(name);
    if (role == "work") return RunWorker(name, kTimeoutMs, kPauseAfterFailureMs);
    if (role == "hurry") return RunWorker(name, kShortTimeoutMs, 0);
    if (argc == 5) {
        doomedHit = std::atoi(argv[3]);
        doomedPlace = argv[4];
    }
    const int result = role == "client" ? RunClient(name) : RunServer(name);
    for (const auto& [place, count] : hits)
        std::cout << count << ' ' << place << '\n';
    return result;
}
